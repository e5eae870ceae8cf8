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

/// With a pass without load: how many of the first questions find none, and behind how many sweeps somebody stops.
struct Course {
    int quietLooks;
    std::size_t stop = Lasting;
};

/// One channel, A then B, two sweeps each; a line that holds `failing` fails, one that begins with `hanging` never
/// ends. The load is there for the first `looks` questions.
DesenseResult Tested(const Support::TempFolder& folder, int looks, const std::string& failing,
                     const std::string& hanging = "none", std::optional<Course> course = {}) {
    folder.Write("summary.csv", "head\n36, 9, 5 GHz\n");  // of an earlier test, as is the next
    folder.Write("bins.csv", "old");
    DesenseIo io;
    io.message = [](const std::string&) {};
    io.progress = [&](const DesenseStep& step) { return !course || step.done < course->stop; };
    io.isLoaded = [&] { return (!course || course->quietLooks-- <= 0) && looks-- > 0; };
    io.run = [&](const std::string& line) -> DesenseAnswer {
        if (line.starts_with(hanging)) return {true, true, "", {}};
        if (line.find(failing) != std::string::npos) return {false, false, "it failed", {}};
        if (line.starts_with("-start")) return {true, false, "", {Said("BurnInTest process started.")}};
        if (line.starts_with("-export"))
            folder.Write(line.find("idle") == std::string::npos ? "summary.csv" : "summary-idle.csv",
                         "head\n36, 1.5, 5 GHz\n");
        if (line.starts_with("-dump")) folder.Write("bins.csv", "new");
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
    request.idleBaseline = course.has_value();
    request.folder = folder.Path().string();
    request.config = folder.Write("test.cfg", "HBChannels,[36;x;37;37; 36;;036;99999999999;38]\n");
    return RunDesense(request, io);
}

}  // namespace

TEST(Desense, AFigureNeedsTheLoadAndBothChains) {
    const Support::TempFolder folder;
    const auto sound = Tested(folder, Lasting, "nothing");
    ASSERT_EQ(sound.channels.size(), 1u);
    EXPECT_EQ(sound.channels[0].desense_db, 1.5);
    EXPECT_EQ(sound.Gravest(), Verdict::Pass);
    std::string leftOut;
    for (const DesenseLeftOut& one : sound.leftOut)
        leftOut += one.text + (one.channel > 0 ? "," : "?,");
    EXPECT_EQ(leftOut, "x?,37, 36?,036?,99999999999?,38,");
    // A load that doesn't end keeps nothing back.
    EXPECT_EQ(Tested(folder, Lasting, "nothing", "-stop").channels.at(0).desense_db, 1.5);
    EXPECT_EQ(folder.Read("bins.csv"), "new");
    EXPECT_NE(folder.Read("messages.log").find(">> BurnInTest process started."), std::string::npos);
    // Lost in the middle of chain A: nothing is swept behind it.
    const auto lost = Tested(folder, 2, "-chain B ");
    EXPECT_EQ(lost.channels.at(0).judgement.invalid, "the workload ended before its time");
    EXPECT_TRUE(lost.trouble.starts_with(lost.channels[0].judgement.invalid + ";")) << lost.trouble;
    // An earlier test's summary stood in the folder; none of its figures may show.
    for (const auto& result : {Tested(folder, Lasting, "-chain A "), Tested(folder, Lasting, "-export"),
                               Tested(folder, Lasting, "nothing", "-start")}) {
        EXPECT_FALSE(result.channels.at(0).desense_db.has_value());
        EXPECT_FALSE(std::filesystem::exists(folder / "bins.csv"));
    }
}

TEST(Desense, AnIdleFigureIsOneOfAnIdleMachineAndBothChains) {
    const Support::TempFolder folder;
    const auto refused = Tested(folder, Lasting, "nothing", "none", Course{0});
    EXPECT_TRUE(refused.trouble.starts_with("a load runs already")) << refused.trouble;
    EXPECT_EQ(folder.Read("bins.csv"), "old");  // nothing was tested
    const auto spoilt = Tested(folder, Lasting, "nothing", "none", Course{2}).channels.at(0);
    EXPECT_EQ(spoilt.judgement.invalid, "a load was running in the idle pass");
    EXPECT_FALSE(spoilt.idle_db.has_value());
    EXPECT_EQ(spoilt.desense_db, 1.5);
    const auto half = Tested(folder, Lasting, "nothing", "none", Course{Lasting, 2}).channels.at(0);
    EXPECT_FALSE(half.idle_db.has_value());  // chain B is missing
    EXPECT_EQ(half.levels.size(), 1u);
    EXPECT_TRUE(half.judgement.invalid.starts_with("measured without load alone")) << half.judgement.invalid;
    // The idle figures of a test that ended before its load was up never stand as those of the test.
    const auto idle = Tested(folder, Lasting, "nothing", "-start", Course{Lasting}).channels.at(0);
    EXPECT_EQ(idle.idle_db, 1.5);
    EXPECT_EQ(idle.judgement.verdict, Verdict::Invalid);
    for (const char* name : {"summary.csv", "summary-idle.csv"})
        EXPECT_FALSE(std::filesystem::exists(folder / name)) << name;
}
