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

constexpr int Lasting = 1000;

/// One channel, A then B, two sweeps each; a line that holds `failing` fails, one that begins with `hanging` never
/// ends. The load is there for the first `looks` questions.
DesenseResult Tested(const Support::TempFolder& folder, int looks, const std::string& failing,
                     const std::string& hanging = "none") {
    folder.Write("summary.csv", "head\n36, 9, 5 GHz\n");  // of an earlier test, as is the next
    folder.Write("bins.csv", "old");
    DesenseIo io;
    io.message = [](const std::string&) {};
    io.progress = [](const DesenseStep&) { return true; };
    io.isLoaded = [&] { return looks-- > 0; };
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
                "chainMode":"A->B","iterations":"2","channels":[{"band":"5","bandwidths":[{"bandwidth":"20",
                "channels":[{"value":"36","frequency":"5180"}]}]}]}})"}};
        return {};
    };
    DesenseRequest request;
    request.folder = folder.Path().string();
    request.config = folder.Write("test.cfg", "HBChannels,[36;37;37]\n");
    return RunDesense(request, io);
}

}  // namespace

TEST(Desense, AFigureNeedsTheLoadAndBothChains) {
    const Support::TempFolder folder;
    const auto sound = Tested(folder, Lasting, "nothing");
    ASSERT_EQ(sound.channels.size(), 1u);
    EXPECT_EQ(sound.channels[0].desense_db, 1.5);
    EXPECT_EQ(sound.Gravest(), Verdict::Pass);
    EXPECT_FALSE(std::filesystem::exists(folder / "bins.csv"));
    ASSERT_EQ(sound.leftOut.size(), 1u);
    EXPECT_EQ(sound.leftOut[0].channel, 37);
    // Lost in the middle of chain A: nothing is swept behind it.
    const auto lost = Tested(folder, 2, "-chain B ");
    EXPECT_EQ(lost.channels.at(0).judgement.invalid, "the workload ended before its time");
    EXPECT_EQ(lost.trouble, lost.channels[0].judgement.invalid);
    // An earlier test's summary stood in the folder; none of its figures may show.
    for (const auto& result : {Tested(folder, Lasting, "-chain A "), Tested(folder, Lasting, "-export"),
                               Tested(folder, Lasting, "nothing", "-start")})
        EXPECT_FALSE(result.channels.at(0).desense_db.has_value());
}
