// The stored measurement state: what goes into a snapshot and how one comes back. Both variants share all steps but
// the way in which settings return: here straight into the engine, without the radio.
#include <algorithm>

#include "OSAL/WholeFile.h"
#include "Stores/Snapshot.h"
#include "Streams/Trace.h"
#include "TarnWifiFlows.h"

using Streams::ThrowLogged;
using Streams::TraceWarning;

void TarnWifiFlows::SaveAll(std::string path) {
    TRACE_SCOPE("TarnWifiFlows::SaveAll");
    ExportToFile(traceFunctionName, path, [this](const std::string& file) {
        PrepareSavedParamsNonArrays();
        PrepareSavedParams();
        LoadNonArraySavedParams();
        LoadDataFromLumen();
        LoadDataFromWifiFlows();
        SerializeData(file);
        DeleteSavedParams();
    });
}

void TarnWifiFlows::LoadAll(std::string path) {
    TRACE_SCOPE("TarnWifiFlows::LoadAll");
    ExportToFile(traceFunctionName, path, [this](const std::string& file) {
        PrepareSavedParamsNonArrays();
        const Snapshot::Before before({Engine(), m_gainConfig});
        RestoreFrom(
            file, [&] { DeserializeNonArrayVariables(file); },
            [&] {
                before.GiveBack({Engine(), m_gainConfig});
            });
    });
}

void TarnWifiFlows::RestoreFrom(const std::string& path, const std::function<void()>& settings,
                                const std::function<void()>& undo) {
    bool buffersMade = false;
    try {
        settings();
        buffersMade = true;
        PrepareLumenBuffers();
        PrepareSavedParams();
        DeserializeDataBuffers(path);
        SaveDataToWifiFlows();
        SaveDataToLumen();
    } catch (...) {
        undo();
        if (buffersMade) {  // the results are gone, and half of a file's are none
            Engine().Realloc(0);
            Engine().m_isInit = true;
        }
        throw;
    }
    KeepRestoredSweep();
    DeleteSavedParams();
}

void TarnWifiFlows::PrepareSavedParams() {
    TRACE_SCOPE("TarnWifiFlows::PrepareSavedParams");
    m_savedArrays = Snapshot::MakeArrays(Engine());
}

void TarnWifiFlows::PrepareSavedParamsNonArrays() {
    TRACE_SCOPE("TarnWifiFlows::PrepareSavedParamsNonArrays");
    m_savedNonArrays.clear();
    for (const Snapshot::Setting& setting : Snapshot::Settings())
        m_savedNonArrays.push_back({std::string(setting.name), 0.0});
}

void TarnWifiFlows::LoadNonArraySavedParams() {
    TRACE_SCOPE("TarnWifiFlows::LoadNonArraySavedParams");
    const Snapshot::Subject subject{Engine(), m_gainConfig};
    for (std::size_t place = 0; place < Snapshot::PlaceCount; ++place)
        m_savedNonArrays[place].value = Snapshot::Settings()[place].get(subject);
}

void TarnWifiFlows::LoadDataFromLumen() {
    TRACE_SCOPE("TarnWifiFlows::LoadDataFromLumen");
    Snapshot::TakeResults(Engine(), m_savedArrays, m_savedHistRanges);
    // After a load the engine has no samples; those of the file are still at hand, until a capture brings others.
    for (auto& [name, kept] : m_restoredSweep) {
        SavedArray& now = m_savedArrays.at(name);
        const auto silent = [](const std::vector<double>& buffer) {
            return std::ranges::all_of(buffer, [](double value) { return value == 0; });
        };
        if (now.length == kept.length && std::ranges::all_of(now.buffers, silent)) now = kept;
    }
}

void TarnWifiFlows::KeepRestoredSweep() {
    m_restoredSweep.clear();
    for (const char* name : {"m_ISweep", "m_QSweep"})
        m_restoredSweep.insert(m_savedArrays.extract(name));
}

void TarnWifiFlows::LoadDataFromWifiFlows() {
    TRACE_SCOPE("TarnWifiFlows::LoadDataFromWifiFlows");
    SavedArray& limits = m_savedArrays.at("m_HistMinMax");
    for (std::size_t chain = 0; chain < limits.buffers.size(); ++chain) {
        limits.buffers[chain][0] = m_savedHistRanges[chain].second;
        limits.buffers[chain][1] = m_savedHistRanges[chain].first;
    }
    if (const int left = Snapshot::TakePowers(m_freqPowerStore, m_savedArrays); left > 0)
        TRACE(TraceWarning, Common::Format("${1} channels of the power table have no line in a snapshot") % left);
}

void TarnWifiFlows::SerializeData(std::string path) {
    TRACE_SCOPE("TarnWifiFlows::SerializeData");
    const std::string text = Snapshot::ToText(m_savedArrays, m_savedNonArrays);
    if (const auto written = OSAL::WriteWholeFile(path, text); !written) REPORT_FAILURE(written.Reason());
}

std::string TarnWifiFlows::SnapshotText(const std::string& path) {
    auto text = Snapshot::ReadFile(path);
    if (!text) throw Common::Exception(text.Reason());
    return std::move(*text);
}

std::vector<std::optional<std::string>> TarnWifiFlows::SavedTexts(const std::string& path) {
    std::vector<std::string_view> names;
    for (const SavedValue& value : m_savedNonArrays)
        names.emplace_back(value.name);
    const std::string text = SnapshotText(path);
    auto texts = Snapshot::ReadValues(text, names);
    // Settings come one after the other: a file may end early, but none may be missing between two others.
    const auto all = std::span(texts).first(Snapshot::PlaceCount);
    const auto has = [](const std::optional<std::string>& value) { return value.has_value(); };
    const auto end = std::ranges::find_if_not(all, has);
    if (std::any_of(end, all.end(), has))
        throw Common::Exception(Common::Format("the snapshot has no ${1}") %
                                m_savedNonArrays[static_cast<std::size_t>(end - all.begin())].name);
    return texts;
}

void TarnWifiFlows::DeserializeNonArrayVariables(std::string path) {
    TRACE_SCOPE("TarnWifiFlows::DeserializeNonArrayVariables");
    const auto texts = SavedTexts(path);
    std::vector<std::pair<const Snapshot::Setting*, double>> values;  // all are read before any is set
    for (std::size_t place = 0; place < Snapshot::PlaceCount && texts[place]; ++place) {
        const Snapshot::Setting& setting = Snapshot::Settings()[place];
        values.emplace_back(&setting, setting.parse(*texts[place]));
    }
    for (const auto& [setting, value] : values)
        setting->put({Engine(), m_gainConfig}, value);
}

void TarnWifiFlows::PrepareLumenBuffers() {
    TRACE_SCOPE("TarnWifiFlows::PrepareLumenBuffers");
    auto& engine = Engine();
    Snapshot::CheckBuffers(engine);
    // The channel's place counts in its own list, which need not be the list of the channel before.
    const auto table = ChannelDatabase::FindTable(engine.m_Band, BandwidthValueToEnum(engine.m_Bandwidth));
    const auto rows = table ? m_channelTables.find(*table) : m_channelTables.end();
    if (rows != m_channelTables.end()) engine.m_NumOfChannels = static_cast<std::int32_t>(rows->second.size());
    if (engine.m_ChannelIndex >= static_cast<std::uint32_t>(std::max(engine.m_NumOfChannels, 0)))
        ThrowLogged(traceFunctionName, "Channel is not supported in chosen band");
    engine.PrepareBuffers();
}

void TarnWifiFlows::DeserializeDataBuffers(std::string path) {
    TRACE_SCOPE("TarnWifiFlows::DeserializeDataBuffers");
    Snapshot::ReadArrays(SnapshotText(path), m_savedArrays);
}

void TarnWifiFlows::SaveDataToWifiFlows() {
    TRACE_SCOPE("TarnWifiFlows::SaveDataToWifiFlows");
    const SavedArray& limits = m_savedArrays.at("m_HistMinMax");
    m_savedHistRanges.clear();
    for (const std::vector<double>& limit : limits.buffers)
        m_savedHistRanges.emplace_back(limit[1], limit[0]);
    Snapshot::GivePowers(m_savedArrays, m_freqPowerStore);
}

void TarnWifiFlows::SaveDataToLumen() {
    TRACE_SCOPE("TarnWifiFlows::SaveDataToLumen");
    Snapshot::GiveResults(Engine(), m_savedArrays, m_savedHistRanges);
}

void TarnWifiFlows::DeleteSavedParams() {
    TRACE_SCOPE("TarnWifiFlows::DeleteSavedParams");
    m_savedArrays.clear();
    m_savedNonArrays.clear();
}
