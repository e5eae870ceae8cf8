// The burn-in desense test against a plug-in that answers by a script: what costs a figure, and what doesn't.
#include "Desense.h"

#include <gtest/gtest.h>

#include "Support/TempFolder.h"

using namespace TarnMeasure;

namespace {

std::string Said(const char* text) {
    return std::string(R"({"type":"Add Vesper Test Message Response","data":{"timestamp":"","message":")") + text +
           "\"}}";
}

/// One channel, A then B, one sweep each; a line that begins with `failing` fails, one with `hanging` never ends.
DesenseResult Tested(const Support::TempFolder& folder, bool isLoaded, const std::string& failing,
                     const std::string& hanging = "none") {
    DesenseIo io;
    io.message = [](const std::string&) {};
    io.progress = [](const DesenseStep&) { return true; };
    io.isLoaded = [=] { return isLoaded; };
    io.run = [&](const std::string& line) -> DesenseAnswer {
        if (line.starts_with(hanging)) return {true, true, "", {}};
        if (line.find(failing) != std::string::npos) return {false, false, "it failed", {}};
        if (line.starts_with("-start")) return {true, false, "", {Said("BurnInTest process started.")}};
        if (line.starts_with("-export")) folder.Write("summary.csv", "head\n36, 1.5, 5 GHz\n");
        if (line.starts_with("-band"))
            return {true, false, "", {R"({"type":"Trigger Response Vesper","data":
                                         {"PowerAverage":"-120.5","MaxPeak":"-118"}})"}};
        if (line.starts_with("-vesper_set"))
            return {true, false, "", {R"({"type":"Vesper Settings Response","data":{"bw":"20","rbw":"312.5",
                "chainMode":"A->B","iterations":"1","channels":[{"band":"5","bandwidths":[{"bandwidth":"20",
                "channels":[{"value":"36","frequency":"5180"}]}]}]}})"}};
        return {};
    };
    DesenseRequest request;
    request.folder = folder.Path().string();
    return RunDesense(request, io);
}

}  // namespace

TEST(Desense, AFigureNeedsTheLoadAndBothChains) {
    const Support::TempFolder folder;
    const auto sound = Tested(folder, true, "nothing");
    ASSERT_EQ(sound.channels.size(), 1u);
    EXPECT_EQ(sound.channels[0].desense_db, 1.5);
    EXPECT_EQ(sound.Gravest(), Verdict::Pass);
    EXPECT_EQ(Tested(folder, false, "nothing").channels.at(0).judgement.invalid, "the workload ended before its time");
    // An earlier test's summary stands in the folder; none of its figures may show.
    for (const auto& result : {Tested(folder, true, "-chain A "), Tested(folder, true, "-export"),
                               Tested(folder, true, "nothing", "-start")})
        EXPECT_FALSE(result.channels.at(0).desense_db.has_value());
}
