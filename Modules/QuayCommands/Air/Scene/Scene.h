// What a simulated air holds, and its form as JSON (docs/scenes.md tells every key).
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "OSAL/Outcome.h"

namespace quayCommand {

/// One step of a source's life. Scene times are whole microseconds, so that steps fall where they are written.
struct Change {
    double atUs = 0.0;
    double offsetDb = 0.0;
    bool on = true;
    bool ramp = false;  ///< the offset went there in a straight line from the change before
};

enum class Activity { Always, Workload, NoWorkload };

/// What all sources share.
struct Source {
    std::string name;
    Activity activity = Activity::Always;
    std::array<double, 2> chainOffsetsDb{};  ///< A, B; on top of the source's level
    std::vector<Change> changes;             ///< in rising order of time
    double repeatUs = 0.0;                   ///< the changes begin anew after this time; 0 for never
};

/// So many frames of one length in each round.
struct FrameKind {
    unsigned lengthUs = 0;  ///< preamble included: 20 us and whole 4 us symbols
    unsigned count = 1;
};

struct AccessPoint : Source {
    std::uint32_t band = 0;       ///< 0 to 2
    std::uint32_t bandwidth = 0;  ///< 0 to 4
    std::uint32_t channel = 1;
    double levelDbm = 0.0;  ///< power of the whole channel while a frame is on the air
    double duty = 1.0;      ///< share of the time that frames take
    bool legacy = false;    ///< data on 52 instead of 56 subcarriers
    std::vector<FrameKind> frames;
};

struct Tone : Source {
    double frequencyMhz = 0.0;
    double levelDbm = 0.0;
};

/// Harmonics of a clock.
struct Comb : Source {
    double fundamentalMhz = 0.0;
    double levelDbm = 0.0;  ///< of the harmonic `levelHarmonic`
    unsigned levelHarmonic = 1;
    double rolloffDbPerDecade = 20.0;  ///< of the harmonic's number
    double spreadPercent = 0.0;        ///< down-spread of the clock: it sweeps from 1 - spread to 1 and back
    double modulationKhz = 31.5;       ///< sweeps down and up a second, in thousands
};

/// Noise between frequencies, such as a bus makes it.
struct NoiseBand : Source {
    struct Point {
        double mhz;
        double dbmPerMhz;
    };
    std::vector<Point> points;  ///< rising frequencies, straight lines in dB between them; silence outside
};

struct Scene {
    std::string description;
    double captureIntervalUs = 100000.0;  ///< scene time from one capture's start to the next one's
    std::array<double, 2> noiseFigureDb{7.0, 7.0};
    std::array<double, 2> chainOffsetsDb{};  ///< A, B; for all sources, not for the receiver's own noise
    std::vector<AccessPoint> accessPoints;
    std::vector<Tone> tones;
    std::vector<Comb> combs;
    std::vector<NoiseBand> noise;
};

/// Reads a scene's JSON. A refusal begins with "LINE:COLUMN: " for text that isn't JSON, else with the place in the
/// document, such as "accessPoints[1].level_dbm: ".
OSAL::Outcome<Scene> ReadScene(std::string_view text);

/// Level of a source at a scene time: its offset in dB; nothing while it is silent.
struct SourceState {
    bool on = true;
    double offsetDb = 0.0;
};
SourceState StateAt(const Source& source, double timeUs, bool workload);

}  // namespace quayCommand
