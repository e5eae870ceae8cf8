// Reads a JSON document strictly: every key must be known, every value of its type and in its range.
#pragma once

#include <functional>
#include <set>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

namespace quayCommand {

/// Why a document is refused, with the place in it. Stays within the reader of a document.
class JsonError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The text as a document; throws JsonError with "LINE:COLUMN: " for bad syntax, or the key that an object has twice.
nlohmann::json ParseJson(std::string_view text);

/// One object of a document. Each getter marks its key as known; `Done` refuses the keys that nobody asked for.
class JsonObject {
public:
    /// @param path  place of the object, empty for the document itself
    JsonObject(const nlohmann::json& value, std::string path);

    bool Has(const std::string& key) { return Find(key) != nullptr; }
    double Number(const std::string& key, double low, double high);
    double Number(const std::string& key, double low, double high, double fallback);
    unsigned Whole(const std::string& key, unsigned low, unsigned high);
    unsigned Whole(const std::string& key, unsigned low, unsigned high, unsigned fallback);
    bool Flag(const std::string& key, bool fallback);
    std::string Text(const std::string& key, const std::string& fallback);
    /// The place of the text among `choices`.
    std::size_t Choice(const std::string& key, const std::vector<std::string>& choices);
    std::size_t Choice(const std::string& key, const std::vector<std::string>& choices, std::size_t fallback);
    /// The elements of an array of objects; none when the key is absent. Calls `Done` for each.
    void Each(const std::string& key, const std::function<void(JsonObject&)>& read);
    /// An array of so many numbers, or one number for all of them.
    std::vector<double> Numbers(const std::string& key, std::size_t count, double low, double high, double fallback);
    void Done() const;

    /// Refuses the value of a key.
    [[noreturn]] void Fail(const std::string& key, const std::string& reason) const;

private:
    const nlohmann::json* Find(const std::string& key);
    const nlohmann::json& Get(const std::string& key);
    std::string PathOf(const std::string& key) const;
    double Checked(const std::string& key, const nlohmann::json& value, double low, double high) const;

    const nlohmann::json& m_value;
    std::string m_path;
    std::set<std::string> m_known;
};

}  // namespace quayCommand
