#include "Publisher/Publisher.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <sstream>
#include <thread>

#include "OSAL/OSAL.h"
#include "Publisher/ListenerLibrary.h"
#include "QuayExceptions.h"
#include "SingletonSlots.h"
#include "Streams/Trace.h"
#include "Support/TempFolder.h"

namespace fs = std::filesystem;

namespace {

/// Puts another listener into the process's place for it.
class Listening {
public:
    explicit Listening(const std::string& name) : m_mine({name}), m_slot(&m_mine) { Swap(); }
    ~Listening() { Swap(); }

private:
    void Swap() { std::swap(SingletonWrapper<Publisher::ListenerLibrary>::accessObject(), m_slot); }
    Publisher::ListenerLibrary m_mine;
    Publisher::ListenerLibrary* m_slot;
};

void Inner() {
    TRACE_SCOPE("Test::Inner");
    OSAL::Sleep::MilliSec(2);
    const CQuayMsgException error("No \"answer\"\xff", "Tune", "radio.cpp", 258);
}

void Outer() {
    TRACE_SCOPE("Test::Outer");
    Inner();
    std::thread(Inner).join();
}

/// What the listener wrote of `Outer`.
std::string Traced(const std::string& path) {
    EXPECT_TRUE(Publisher::PublishToFile(path));
    Outer();
    const std::string killed = Support::ReadText(path);
    EXPECT_TRUE(Publisher::PublishToFile(""));
    EXPECT_EQ(Support::ReadText(path), killed) << "an end by force would have left the same";
    EXPECT_FALSE(Publisher::IsPublishing());
    Outer();  // not heard
    return Support::ReadText(path);
}

}  // namespace

TEST(ArgumentNames, AreSplitAsTheyStandInTheSource) {
    struct Case {
        std::string list, names;
    };
    for (const auto& c :
         {Case{"'\\0', fileName, errorLine, funcName, desc", "Constant|fileName|errorLine|funcName|desc|"},
          Case{"name.c_str(), {first, second}, last", "name|first|last|"},
          Case{"true,false,12,,x,{ab}", "Constant|Constant|Constant|Constant|Constant|ab|"},
          Case{"{open, never", "open|"}, Case{"", ""}}) {
        std::vector<std::string> names;
        const auto count = static_cast<std::size_t>(std::ranges::count(c.names, '|'));
        EXPECT_TRUE(Publisher::SplitArgumentNames(c.list, count, names)) << c.list;
        std::string joined;
        for (const auto& name : names)
            joined += name + "|";
        EXPECT_EQ(joined, c.names);
        EXPECT_FALSE(Publisher::SplitArgumentNames(c.list, count + 1, names));
    }
}

TEST(Values, KnowTheirTypeAndShowOtherThanPrintableCharactersAsBytes) {
    EXPECT_TRUE(TypeAny::TypeContainer<const char*>("two\r\nlines").IsText());
    EXPECT_EQ(TypeAny::TypeContainer<const char*>("a\xAF\t").ToText(), "Type: char const *\nContent 61 AF 09 ");
    EXPECT_EQ(TypeAny::TypeContainer<const char*>("two").ToText(), "Type: char const *\nBuffer Size: 3\nContent two\n");
    EXPECT_EQ(TypeAny::TypeContainer<int>(258).ToText(), "Type: int\nContent 02 01 00 00 ");
    EXPECT_EQ(TypeAny::TypeContainer<const char*>(nullptr).GetSize(), 0u);
    EXPECT_EQ(TypeAny::PlainTypeName("struct a::class b * __ptr64"), "a::b *");
}

TEST(Listeners, AreLookedForFiveTimesAndNeverAgain) {
    const Support::TempFolder folder;
    for (const int failures : {4, 5}) {
        const std::string name = folder / (std::to_string(failures) + ".so");
        Publisher::ListenerLibrary listener({name});
        for (int k = 0; k < failures; ++k)
            EXPECT_FALSE(listener.IsListening());
        fs::copy_file(TARN_THROWING_LISTENER, name);
        EXPECT_EQ(listener.IsListening(), failures < 5);
    }
}

TEST(Listeners, ThatFailHarmNobody) {
    const Support::TempFolder folder;
    std::string foreign = Support::ReadText(TARN_THROWING_LISTENER);
    foreign[18] = 2;  // another processor's
    const std::string names[] = {TARN_THROWING_LISTENER, folder.Write("foreign.so", foreign),
                                 folder.Write("cut.so", foreign.substr(0, 5000)), folder / "missing.so",
                                 OSAL::DirectoryOf(TARN_THROWING_LISTENER) + "libSingletons.so"};
    for (const std::string& name : names) {
        const Listening listening(name);
        EXPECT_EQ(Publisher::IsPublishing(), name == TARN_THROWING_LISTENER);
        EXPECT_NO_THROW(Outer());
        EXPECT_EQ(Publisher::WaitUntilEmpty() + Publisher::SuspendFromAction(1) + Publisher::GetLatestMessageId() +
                      Publisher::WaitUntilSaveOperationDone(),
                  0u);
        EXPECT_FALSE(Publisher::PublishToFile(folder / "x"));
    }
}

TEST(OurListener, WritesScopesSleepsAndExceptionsAsLinesOfJson) {
    const Support::TempFolder folder;
    std::istringstream lines(Traced(folder / "trace.jsonl"));
    std::string seen[2];
    std::uint32_t firstThread = 0;
    double sleepMs = 0, innerMs = 0;
    for (std::string line; std::getline(lines, line);) {
        const auto json = nlohmann::json::parse(line);
        const std::uint32_t thread = json["thread"];
        if (firstThread == 0) firstThread = thread;
        const std::string function = json["function"], kind = json["kind"];
        seen[thread != firstThread] += kind + " " + std::to_string(json["depth"].get<int>()) + " " + function + "\n";
        EXPECT_EQ(json["utc"].get<std::string>().size(), 27u);
        EXPECT_GT(json["line"].get<int>(), 0);
        EXPECT_NE(json["file"], "");
        if (kind == "exception") {
            const nlohmann::json expected{
                {"fileName", "radio.cpp"}, {"errorLine", 258}, {"funcName", "Tune"}, {"desc", nullptr}};
            auto arguments = json["arguments"];
            EXPECT_EQ(arguments["desc"].get<std::string>().substr(0, 30), "Type: char const *\nContent 4E ");
            arguments["desc"] = nullptr;
            EXPECT_EQ(arguments, expected);
        }
        EXPECT_EQ(json["arguments"].contains("milliseconds"), json["action"] == "Sleep" && kind == "begin");
        if (kind == "end" && function == "OSAL::Sleep::MilliSec") sleepMs = json["elapsed_ms"];
        if (kind == "end" && function == "Test::Inner") innerMs = json["elapsed_ms"];
    }
    const auto inner = [](int depth) {
        const std::string own = std::to_string(depth), next = std::to_string(depth + 1);
        return "begin " + own + " Test::Inner\nbegin " + next + " OSAL::Sleep::MilliSec\nend " + next +
               " OSAL::Sleep::MilliSec\nexception " + next + " CQuayMsgException::CQuayMsgException\nend " + own +
               " Test::Inner\n";
    };
    EXPECT_EQ(seen[0], "begin 0 Test::Outer\n" + inner(1) + "end 0 Test::Outer\n");
    EXPECT_EQ(seen[1], inner(0));
    EXPECT_TRUE(sleepMs >= 2.0 && innerMs >= sleepMs);
    EXPECT_FALSE(Publisher::PublishToFile(folder / "no/such"));
    fs::create_symlink("trace.jsonl", folder / "link");
    EXPECT_FALSE(Publisher::PublishToFile(folder / "link"));
    EXPECT_EQ(Publisher::GetLatestMessageId(), 12u);
}

TEST(OurListener, WritesATraceThatABrowserShows) {
    const Support::TempFolder folder;
    int open = 0, instants = 0;
    double last = 0;
    for (const auto& event : nlohmann::json::parse(Traced(folder / "trace.json"))) {
        const std::string phase = event["ph"];
        open += phase == "B" ? 1 : phase == "E" ? -1 : 0;
        instants += phase == "i";
        EXPECT_GE(open, 0);
        EXPECT_GE(event["ts"].get<double>(), last);
        last = event["ts"];
    }
    EXPECT_EQ(open, 0);
    EXPECT_EQ(instants, 2);
}
