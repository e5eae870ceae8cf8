// A flow object on the simulated adapter, with everything that leaves it in sight: answers, radio calls, error stream.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "OSAL/OSAL.h"
#include "RadioSetup.h"
#include "Streams/AppStreams.h"
#include "Support/TempFolder.h"
#include "Web/TarnWifiFlowsWeb.h"

using Texts = std::vector<std::string>;

/// What a line gave.
struct Answer {
    std::int32_t exitCode = 0;
    std::string output;
    std::string error;
    std::string left;  ///< the line afterwards
};

/// Collects what the flows send to the host.
class Host final : public IHostOutput {
public:
    void OutputObject(std::string text) override { texts.push_back("object " + text); }
    void Output(std::string text) override { texts.push_back("output " + text); }
    void OutputError(std::string text) override { texts.push_back("error " + text); }
    Texts texts;
};

/// The front-end variant with what a test sets up or looks at; a line with plain output makes it the plain one.
class OpenFlows : public TarnWifiFlowsWeb {
public:
    using TarnWifiFlowsWeb::m_clearAveragePending;
    using TarnWifiFlowsWeb::m_clearMaxHoldPending;
    using TarnWifiFlowsWeb::m_vesper;
    using TarnWifiFlowsWeb::m_vesperMessages;
    using TarnWifiFlowsWeb::m_vesperStore;
    using TarnWifiFlowsWeb::m_vesperTestInProgress;
    using TarnWifiFlowsWeb::m_workload;
    using TarnWifiFlowsWeb::TarnWifiFlowsWeb;
};

class FlowsTest : public ::testing::Test {
protected:
    FlowsTest() {
        std::filesystem::current_path(m_folder);  // for keys that write to whatever name they get
        SingletonWrapper<Streams::AppStreams>::accessObject()->errorStream = &m_errorStream;
        Streams::AppStreams::OpenLogFile(Path("log.txt"));  // so that every trace line is built
    }
    ~FlowsTest() override {
        m_web.reset();
        m_flows.reset();
        Streams::AppStreams::CloseLogFile();
        SingletonWrapper<Streams::AppStreams>::accessObject()->errorStream = nullptr;
        std::filesystem::current_path(m_folder.parent_path());
    }

    /// Puts another adapter in place and makes a flow object for it, without Init.
    void Place(const std::string& adapter, const std::string& faults = "") {
        m_web.reset();
        m_flows.reset();
        quayCommand::RadioSetup setup{adapter, m_air, Path("journal"), faults};
        setup.storedTuning = quayCommand::StoredTuning::AsTuned;
        const auto refusal = quayCommand::SetUpRadio(setup);
        ASSERT_EQ(refusal.value_or(""), "");
        m_seenCalls = 0;
        m_flows = std::make_unique<TarnWifiFlows>(&m_host);
    }

    /// The same with Init; the message on the missing default gain file is taken.
    void Start(const std::string& adapter = "", const std::string& faults = "") {
        Place(adapter, faults);
        m_flows->Init();
        Run("");  // takes the answer that Init left
        ForgetCalls();
    }

    /// Makes a front-end variant on the adapter that is in place; nothing of what its Init sends is left.
    void AddWeb() {
        m_web = std::make_unique<OpenFlows>(&m_host);
        m_web->Init();
        m_host.texts.clear();
    }

    static Answer RunOn(TarnWifiFlows& flows, const std::string& line, bool plain) {
        Answer answer;
        answer.left = line;
        answer.exitCode = flows.RunCommand(answer.left, answer.output, answer.error, plain);
        return answer;
    }
    Answer Run(const std::string& line) { return RunOn(*m_flows, line, true); }
    /// What a line makes the front-end variant send; its answer is kept.
    Texts Send(const std::string& line, bool plain = false) {
        m_host.texts.clear();
        m_answer = RunOn(*m_web, line, plain);
        return std::move(m_host.texts);
    }
    /// A message as the host gets it.
    static std::string Object(const std::string& type, const std::string& data) {
        return R"(object {"type": ")" + type + R"(", "data": )" + data + "}";
    }
    std::string Output(const std::string& line) { return Run(line).output; }
    LumenSpectrumAnalyzer::CLmnSA& Engine() { return *m_flows->GetLmnSA(); }

    /// Radio calls since the last ForgetCalls, whole journal lines; without the questions that no flow's order rests
    /// on.
    Texts Calls() {
        static const std::set<std::string> questions{"GetDeviceInfo", "GetAntennaMask", "IsBandEnabled",
                                                     "IsChannelSupported"};
        Texts calls = Lines(Read("journal"));
        calls.erase(calls.begin(), calls.begin() + static_cast<std::ptrdiff_t>(m_seenCalls));
        std::erase_if(calls, [](const std::string& line) { return questions.contains(NameOf(line)); });
        return calls;
    }
    /// Their names.
    Texts CallNames() {
        Texts names = Calls();
        std::ranges::transform(names, names.begin(), NameOf);
        return names;
    }
    void ForgetCalls() { m_seenCalls = Lines(Read("journal")).size(); }
    static std::string NameOf(const std::string& call) { return call.substr(0, call.find(' ')); }

    std::string Path(const std::string& name) const { return m_temp / name; }
    void Write(const std::string& name, const std::string& text) const { m_temp.Write(name, text); }
    std::string Read(const std::string& name) const { return m_temp.Read(name); }
    /// The parts of a text that a delimiter ends.
    static Texts Lines(const std::string& text, char delimiter = '\n') {
        Texts lines;
        std::istringstream stream(text);
        for (std::string line; std::getline(stream, line, delimiter);)
            lines.push_back(line);
        return lines;
    }

    const Support::TempFolder m_temp;
    const std::filesystem::path& m_folder = m_temp.Path();
    std::string m_air = "sim";
    std::ostringstream m_errorStream;
    Host m_host;
    std::unique_ptr<TarnWifiFlows> m_flows;
    std::unique_ptr<OpenFlows> m_web;
    Answer m_answer;  ///< of the last Send

private:
    std::size_t m_seenCalls = 0;
};
