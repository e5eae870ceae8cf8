// The exported functions, and the one adapter of the process.
#include "RadioSetup.h"

#include <array>
#include <cassert>
#include <exception>
#include <utility>

#include "Station.h"

namespace {

using quayCommand::Station;

std::unique_ptr<Station>& CurrentStation() {
    static std::unique_ptr<Station> station;
    return station;
}

/// The adapter in use; the default one from the first call on.
Station& Current() {
    auto& station = CurrentStation();
    if (!station) {
        [[maybe_unused]] const auto reason = Station::Make({}, station);
        assert(!reason);
    }
    return *station;
}

class Factory final : public CommandFactory {
public:
    quayCommand::IWifiCommands* getWifiInstance() override { return Current().Wifi(); }
    quayCommand::NvmCommands* getNvmInstance() override { return Current().Nvm(); }
};

struct ShippedScene {
    const char* name;
    const char* text;
};

constexpr ShippedScene ShippedScenes[] = {
#include "ShippedScenes.inc"
};

}  // namespace

CommandFactory& CommandFactory::GetInstance() {
    static Factory factory;
    return factory;
}

namespace quayCommand {

std::optional<std::string> SetUpRadio(const RadioSetup& setup) {
    std::unique_ptr<Station> station;
    if (auto reason = Station::Make(setup, station)) return reason;
    CurrentStation() = std::move(station);
    return {};
}

std::string DescribeAdapter() {
    return Current().AdapterDescriptionText();
}

std::string DescribeAir() {
    return Current().AirText();
}

std::optional<std::string> RadioTrouble() {
    return Current().Trouble();
}

AdapterDescription AdapterInUse() {
    return Current().Adapter();
}

std::optional<std::string> CaptureTrouble() {
    const auto& capture = Current().LastCapture();
    return capture.IsRefused() ? std::optional(capture.Reason()) : std::nullopt;
}

OSAL::Outcome<Recording> RecordCapture(const RecordRequest& request) {
    return Current().Record(request);
}

OSAL::Outcome<bool> ReceivesChannel(const RadioTuning& tuning) {
    auto& nvm = *Current().Nvm();
    try {
        return nvm.IsBandEnabled(tuning.band) && nvm.IsChannelSupported(tuning.channel, tuning.bandwidth, tuning.band);
    } catch (const std::exception& error) {
        return OSAL::Refusal{std::string("the radio failed: ") + error.what()};
    }
}

bool SetRadioWorkload(bool running) {
    return Current().SetWorkload(running);
}

std::vector<std::string> ShippedSceneNames() {
    std::vector<std::string> names;
    for (const auto& scene : ShippedScenes)
        names.emplace_back(scene.name);
    return names;
}

std::optional<std::string> ShippedSceneText(const std::string& name) {
    for (const auto& scene : ShippedScenes)
        if (name == scene.name) return scene.text;
    return {};
}

std::vector<std::string> RadioOperationNames() {
    return {OperationNames.begin(), OperationNames.end()};
}

}  // namespace quayCommand
