// The JSON form of a scene.
#include <cmath>

#include "Air/Scene/JsonReader.h"
#include "Air/Scene/Scene.h"
#include "ChannelPlan.h"
#include "Format.h"

namespace quayCommand {
namespace {

constexpr double LowestDbm = -200.0, HighestDbm = 20.0;
constexpr double LowestMhz = 1.0, HighestMhz = 10000.0;
constexpr double LongestS = 1e6;

const std::vector<std::string> BandNames = [] {
    std::vector<std::string> names;
    names.reserve(RadioFacts::BandCount);
    for (const RadioFacts::Band& band : RadioFacts::Bands)
        names.emplace_back(band.name);
    return names;
}();
const std::vector<std::string> ActivityNames{"always", "workload", "no_workload"};

/// A key in seconds as whole microseconds.
double ReadTimeUs(JsonObject& object, const std::string& key, double lowS, double highS) {
    return std::round(object.Number(key, lowS, highS) * 1e6);
}

std::array<double, 2> ReadChainPair(JsonObject& object, const std::string& key, double low, double high,
                                    double fallback) {
    const auto numbers = object.Numbers(key, 2, low, high, fallback);
    return {numbers[0], numbers[1]};
}

void ReadChanges(JsonObject& object, Source& source) {
    if (object.Has("repeat_s")) source.repeatUs = ReadTimeUs(object, "repeat_s", 0.001, LongestS);
    object.Each("changes", [&](JsonObject& item) {
        Change change;
        change.atUs = ReadTimeUs(item, "at_s", 0.0, LongestS);
        change.offsetDb = item.Number("offset_db", -200.0, 200.0, 0.0);
        change.on = item.Flag("on", true);
        change.ramp = item.Flag("ramp", false);
        const double before = source.changes.empty() ? (change.ramp ? 0.0 : -1.0) : source.changes.back().atUs;
        if (change.atUs <= before) item.Fail("at_s", "isn't later than the change before");
        source.changes.push_back(change);
    });
}

void ReadSource(JsonObject& object, Source& source) {
    source.name = object.Text("name", "");
    source.activity = static_cast<Activity>(object.Choice("while", ActivityNames, 0));
    source.chainOffsetsDb = ReadChainPair(object, "chain_offsets_db", -100.0, 100.0, 0.0);
    ReadChanges(object, source);
}

/// The bandwidth number of a width that the band and the channel have.
std::uint32_t ReadBandwidth(JsonObject& object, std::uint32_t band, std::uint32_t channel) {
    const auto width = object.Whole("width_mhz", RadioFacts::Bandwidths.front().mhz, RadioFacts::Bandwidths.back().mhz);
    for (std::uint32_t bandwidth = 0; bandwidth < RadioFacts::BandwidthCount; ++bandwidth)
        if (RadioFacts::WidthMhz(bandwidth) == width && RadioFacts::HasChannel(band, bandwidth, channel))
            return bandwidth;
    object.Fail("channel",
                Common::Format("band ${1} has no channel ${2} of ${3} MHz") % BandNames[band] % channel % width);
}

void ReadTuning(JsonObject& object, std::uint32_t& band, std::uint32_t& bandwidth, std::uint32_t& channel) {
    band = static_cast<std::uint32_t>(object.Choice("band", BandNames));
    channel = object.Whole("channel", 1, 233);
    bandwidth = ReadBandwidth(object, band, channel);
}

AccessPoint ReadAccessPoint(JsonObject& object) {
    AccessPoint point;
    ReadSource(object, point);
    ReadTuning(object, point.band, point.bandwidth, point.channel);
    point.levelDbm = object.Number("level_dbm", LowestDbm, HighestDbm);
    point.duty = object.Number("duty", 0.001, 1.0, 1.0);
    point.legacy = object.Flag("legacy", false);
    if (point.legacy && point.bandwidth != 0) object.Fail("legacy", "needs a width of 20 MHz");
    object.Each("frames", [&](JsonObject& item) {
        FrameKind kind;
        kind.lengthUs = item.Whole("length_us", 24, 5484);
        kind.count = item.Whole("count", 1, 100, 1);
        if (kind.lengthUs % 4 != 0) item.Fail("length_us", "isn't a multiple of 4, the length of a symbol");
        point.frames.push_back(kind);
        if (point.frames.size() > 20) object.Fail("frames", "more than 20 kinds of frames");
    });
    if (point.frames.empty()) point.frames = {{60, 1}, {120, 1}};
    return point;
}

Tone ReadTone(JsonObject& object) {
    Tone tone;
    ReadSource(object, tone);
    tone.frequencyMhz = object.Number("frequency_mhz", LowestMhz, HighestMhz);
    tone.levelDbm = object.Number("level_dbm", LowestDbm, HighestDbm);
    return tone;
}

Comb ReadComb(JsonObject& object) {
    Comb comb;
    ReadSource(object, comb);
    comb.fundamentalMhz = object.Number("fundamental_mhz", LowestMhz, HighestMhz);
    comb.levelDbm = object.Number("level_dbm", LowestDbm, HighestDbm);
    comb.levelHarmonic = object.Whole("level_harmonic", 1, 10000, 1);
    comb.rolloffDbPerDecade = object.Number("rolloff_db_per_decade", 0.0, 100.0, 20.0);
    comb.spreadPercent = object.Number("spread_percent", 0.0, 5.0, 0.0);
    comb.modulationKhz = object.Number("modulation_khz", 1.0, 1000.0, 31.5);
    return comb;
}

NoiseBand ReadNoiseBand(JsonObject& object) {
    NoiseBand band;
    ReadSource(object, band);
    object.Each("points", [&](JsonObject& item) {
        const NoiseBand::Point point{item.Number("mhz", LowestMhz, HighestMhz),
                                     item.Number("dbm_per_mhz", LowestDbm, HighestDbm)};
        if (!band.points.empty() && point.mhz <= band.points.back().mhz)
            item.Fail("mhz", "isn't higher than the point before");
        band.points.push_back(point);
    });
    if (band.points.size() < 2) object.Fail("points", "needs two points or more");
    return band;
}

/// What an engineer should read. The air doesn't use it; a wrong entry is refused all the same.
void CheckExpectation(JsonObject& object) {
    const auto what = object.Choice("what", {"channel_power", "peak"});
    std::uint32_t band = 0, bandwidth = 0, channel = 0;
    ReadTuning(object, band, bandwidth, channel);
    object.Choice("chain", {"A", "B"}, 0);
    if (what == 1) object.Number("frequency_mhz", LowestMhz, HighestMhz);
    object.Number("level_dbm", LowestDbm, HighestDbm);
    object.Flag("workload", false);
}

Scene ReadDocument(JsonObject& document) {
    Scene scene;
    scene.description = document.Text("description", "");
    if (document.Has("capture_interval_s"))
        scene.captureIntervalUs = ReadTimeUs(document, "capture_interval_s", 0.001, 3600.0);
    scene.noiseFigureDb = ReadChainPair(document, "noise_figure_db", 0.0, 60.0, 7.0);
    scene.chainOffsetsDb = ReadChainPair(document, "chain_offsets_db", -100.0, 100.0, 0.0);
    document.Each("accessPoints", [&](JsonObject& item) { scene.accessPoints.push_back(ReadAccessPoint(item)); });
    document.Each("tones", [&](JsonObject& item) { scene.tones.push_back(ReadTone(item)); });
    document.Each("combs", [&](JsonObject& item) { scene.combs.push_back(ReadComb(item)); });
    document.Each("noise", [&](JsonObject& item) { scene.noise.push_back(ReadNoiseBand(item)); });
    document.Each("expect", CheckExpectation);
    document.Done();
    return scene;
}

}  // namespace

OSAL::Outcome<Scene> ReadScene(std::string_view text) {
    try {
        const auto json = ParseJson(text);
        JsonObject document(json, "");
        return ReadDocument(document);
    } catch (const JsonError& error) {
        return OSAL::Refusal{error.what()};
    }
}

}  // namespace quayCommand
