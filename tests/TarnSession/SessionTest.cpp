// A session on a plug-in that does what a line says: the queue, the thread, the sink, and what is known of an adapter.
#include "Session.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <atomic>
#include <future>
#include <nlohmann/json.hpp>
#include <thread>

#include "Guarded.h"
#include "Record.h"

using namespace TarnSession;

namespace {

class FakeSession : public testing::Test {
protected:
    FakeSession() {
        ::setenv("TARN_PLUGIN", FAKE_PLUGIN, 1);
        ::unsetenv("FAKE_INIT_THROWS");
    }

    std::unique_ptr<Session> Open(Options options = {}) {
        auto session = Session::Open(options, sink);
        EXPECT_TRUE(session) << (session ? "" : session.Reason());
        return session ? std::move(*session) : nullptr;
    }

    KeepingSink sink;
};

}  // namespace

TEST_F(FakeSession, LinesRunInOrderOnOneThreadThatIsNotTheCallers) {
    const auto session = Open();
    std::vector<std::string> done;
    std::vector<std::thread::id> threads;
    for (const char* line : {"plain", "fail", "warn", "bytes"})
        ASSERT_TRUE(session->Post(line, {.plainOutput = true}, [&](const Exchange& exchange) {
            done.push_back(exchange.line + "=" + std::to_string(exchange.exitCode) + exchange.output);
            for (const std::string& warning : exchange.warnings)
                done.push_back(warning);
            threads.push_back(std::this_thread::get_id());
        }));
    const Exchange last = session->Run("nonsense");
    EXPECT_EQ(last.exitCode, 256);
    EXPECT_EQ(last.left, "nonsense");
    EXPECT_EQ(ErrorSentence(last), "unknown");
    EXPECT_EQ(done, (std::vector<std::string>{"plain=0yes", "fail=259", "warn=0", "first", "second", "logged",
                                              "bytes=0a\xFFz"}));
    EXPECT_EQ(std::count(threads.begin(), threads.end(), threads[0]), 4);
    EXPECT_NE(threads[0], std::this_thread::get_id());
    session->Run("speak");
    EXPECT_EQ(sink.messages, std::vector<std::string>{"{\"web\":0}"});
    EXPECT_EQ(sink.printed, std::vector<std::string>{"text"});
    EXPECT_EQ(sink.printedErrors, std::vector<std::string>{"complaint\n"});
}

TEST_F(FakeSession, AFullQueueRefusesALineAndNamesItsLength) {
    Options options;
    options.queueLength = 2;
    const auto session = Open(options);
    std::promise<void> started, release;
    ASSERT_TRUE(session->Post("plain", {}, [&](const Exchange&) {
        started.set_value();
        release.get_future().wait();
    }));
    started.get_future().wait();
    std::atomic<int> answers{0};
    const auto count = [&](const Exchange&) { ++answers; };
    EXPECT_TRUE(session->Post("plain", {}, count));
    EXPECT_TRUE(session->Post("plain", {}, count));
    const auto refused = session->Post("plain", {}, count);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.Reason(), "the plug-in is busy: 2 lines wait already");
    EXPECT_EQ(session->Waiting(), 2U);
    release.set_value();
    EXPECT_EQ(session->Run("plain").exitCode, 0);
    EXPECT_EQ(answers, 2);
    EXPECT_EQ(session->Busy(), std::nullopt);
}

TEST_F(FakeSession, AnAbandonedLineHoldsNobodyAndIsHeardNoMore) {
    auto session = Open();
    ASSERT_TRUE(session->Post("nap", {}, [](const Exchange&) { FAIL() << "nobody waits any more"; }));
    while (session->Busy() != "nap")
        std::this_thread::yield();
    session->Abandon();
    EXPECT_EQ(session->Run("plain").error, "the session is at its end");
    EXPECT_FALSE(session->Post("plain", {}, {}));
    session.reset();
    std::this_thread::sleep_for(std::chrono::milliseconds(300));  // the nap ends and speaks
    EXPECT_TRUE(sink.printed.empty());
}

TEST_F(FakeSession, AnExceptionEndsItsLineOnly) {
    const auto session = Open();
    ASSERT_TRUE(session->Post("plain", {}, [](const Exchange&) { throw std::runtime_error("of a listener"); }));
    const Exchange thrown = session->Run("throw");
    EXPECT_EQ(ErrorSentence(thrown), "the line ended early: thrown by a line");
    EXPECT_EQ(thrown.line + std::to_string(thrown.exitCode) + session->Busy().value_or(""), "throw259");
    EXPECT_EQ(session->Run("plain").output, "no");
}

TEST_F(FakeSession, OpeningSaysWhatFailedAndHowFarItCame) {
    Step step = Step::Kernel;
    const auto reasonOf = [&](const Options& options) {
        const auto session = Session::Open(options, sink, [&](Step begun) { step = begun; });
        return session ? std::string() : session.Reason();
    };
    Options options;
    options.logPath = "/nowhere/log";
    EXPECT_EQ(reasonOf(options), "can't write the log file '/nowhere/log'");
    EXPECT_EQ(step, Step::Log);
    options = {};
    options.radio.adapter = "connected=0";
    EXPECT_EQ(reasonOf(options), "the adapter isn't connected");
    EXPECT_EQ(step, Step::Radio);
    ::setenv("TARN_PLUGIN", "/nowhere.so", 1);
    EXPECT_NE(reasonOf({}).find("/nowhere.so"), std::string::npos);
    EXPECT_EQ(step, Step::Plugin);
    ::setenv("TARN_PLUGIN", FAKE_PLUGIN, 1);
    ::setenv("FAKE_INIT_THROWS", "1", 1);
    EXPECT_EQ(reasonOf({}), "can't start on this adapter: thrown as a pointer");
    EXPECT_EQ(step, Step::Start);
}

TEST(Record, AFailedLineAlwaysHasASentence) {
    EXPECT_EQ(ErrorSentence({"", 256, "ERROR:bad\n", "bad\n", "", {"warned"}}), "bad");
    EXPECT_EQ(ErrorSentence({"", 256, "out", " \n", "", {"warned"}}), "warned");
    EXPECT_EQ(ErrorSentence({"", 256, "out\n", "", "", {}}), "out");
    EXPECT_EQ(ErrorSentence({"", 259, "", "", "", {}}), "failed with exit code 259");
}

TEST(Record, HoldsEveryFieldAndReplacesWhatIsNoUtf8) {
    const Exchange exchange{"-a \"b\"", 256, "ERROR:\n\t\x01", "bad \xFF byte", "-a", {}};
    EXPECT_EQ(nlohmann::json::parse(RecordText({"", 0, "", "", "", {"a", "b"}}, {}))["warnings"],
              nlohmann::json::array({"a", "b"}));
    KeepingSink received;
    received.messages = {"{\"x\":1}"};
    const auto record = nlohmann::json::parse(RecordText(exchange, received));
    EXPECT_EQ(record.size(), 8U);
    EXPECT_EQ(record["line"], "-a \"b\"");
    EXPECT_EQ(record["output"], "ERROR:\n\t\x01");
    EXPECT_EQ(record["error"], "bad \xEF\xBF\xBD byte");
    EXPECT_EQ(record["messages"], nlohmann::json::array({"{\"x\":1}"}));
}

TEST(Adapter, FactsComeFromItsDescriptionAndItsConfiguration) {
    auto facts = FactsOf({.hwType = 9, .deviceId = 0x7E40, .antennaMask = 1, .samples = 2048});
    EXPECT_EQ(facts.hwType, 9U);
    EXPECT_EQ(facts.deviceId, 0x7E40U);
    EXPECT_EQ(facts.chainMask, 1U);
    EXPECT_EQ(facts.samples, 2048U);

    const std::string head = "1\n2\n3\n4\n98304\n2\n02:01\n1.2\ndriver\n1.2.3.4\n5.6.7.8\n";
    ASSERT_TRUE(AddSupportedConfig(head + "(36,HB),1,1,1,0,0\n(37,UHB),1,0,0,0,0\n(40,HB),1,0,0,0,1\n", facts));
    EXPECT_EQ(facts.macAddress, "02:01");
    EXPECT_EQ(facts.packetDriver, "5.6.7.8");
    const ChannelLists expected = {{{}, {{{36, 40}, {36}, {36}, {}, {40}}}, {{{37}}}}};
    EXPECT_EQ(facts.channels, expected);
    for (const char* bad : {"(36,HB),1,1", "(36,XB),1,1,1,0,0", "no channel", "(x,HB),1,1,1,0,0"})
        EXPECT_FALSE(AddSupportedConfig(head + bad, facts)) << bad;
    EXPECT_FALSE(AddSupportedConfig("1\n2\n", facts));
}
