// What a burn-in desense test is to do: the nine values of its configuration, checked before anything starts.
#pragma once

#include <array>
#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>

#include "OSAL/Outcome.h"
#include "TestConfigKeys.h"

namespace TarnServe {

/// Thread: const use is safe from several threads.
class DesenseConfig {
public:
    /// @param text  a configuration file: nine lines KEY,VALUE, each key once; what stands behind them, or behind
    ///              a second comma, is left alone
    static OSAL::Outcome<DesenseConfig> FromText(std::string_view text);
    /// @param json  an object with the nine keys; channels as an array of numbers or as a text split by ";"
    static OSAL::Outcome<DesenseConfig> FromJson(const nlohmann::json& json);

    /// As a configuration file.
    std::string Text() const;
    /// The keys with their values as texts, channels split by ";".
    nlohmann::json ToJson() const;
    bool LoadsMachine() const;
    int Width_mhz() const;

private:
    OSAL::Outcome<> Check() const;

    std::array<std::string, VesperParamCount> m_values;  ///< in the order of the keys; lists without their brackets
};

}  // namespace TarnServe
