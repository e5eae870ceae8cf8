// A flow object on the simulated adapter, with everything that leaves it in sight: answers, radio calls, error stream.
#pragma once

#include <gtest/gtest.h>
#include <stdlib.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "OSAL/OSAL.h"
#include "RadioSetup.h"
#include "Streams/AppStreams.h"
#include "Web/TarnWifiFlowsWeb.h"

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
    std::vector<std::string> texts;
};

class FlowsTest : public ::testing::Test {
protected:
    FlowsTest() {
        std::string pattern = (std::filesystem::temp_directory_path() / "tarn-flows-XXXXXX").string();
        if (!::mkdtemp(pattern.data())) throw std::runtime_error("no folder for the test");
        m_folder = pattern;
        std::filesystem::current_path(m_folder);  // for keys that write to whatever name they get
        SingletonWrapper<Streams::AppStreams>::accessObject()->errorStream = &m_errorStream;
        Streams::AppStreams::OpenLogFile(Path("log.txt"));  // so that every trace line is built
    }
    ~FlowsTest() override {
        m_flows.reset();
        Streams::AppStreams::CloseLogFile();
        SingletonWrapper<Streams::AppStreams>::accessObject()->errorStream = nullptr;
        std::error_code ignored;
        std::filesystem::current_path(m_folder.parent_path(), ignored);
        std::filesystem::remove_all(m_folder, ignored);
    }

    /// Puts another adapter in place and makes a flow object for it, without Init.
    void Place(const std::string& adapter, const std::string& faults = "") {
        m_flows.reset();
        quayCommand::RadioSetup setup{adapter, m_air, (m_folder / "journal").string(), faults};
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

    Answer Run(const std::string& line, bool plain = true) {
        Answer answer;
        answer.left = line;
        answer.exitCode = m_flows->RunCommand(answer.left, answer.output, answer.error, plain);
        return answer;
    }
    std::string Output(const std::string& line) { return Run(line).output; }
    LumenSpectrumAnalyzer::CLmnSA& Engine() { return *m_flows->GetLmnSA(); }

    /// Radio calls since the last ForgetCalls, whole journal lines; without the questions that no flow's order rests
    /// on.
    std::vector<std::string> Calls() {
        static const std::set<std::string> questions{"GetDeviceInfo", "GetAntennaMask", "IsBandEnabled",
                                                     "IsChannelSupported"};
        std::vector<std::string> calls;
        std::ifstream journal(m_folder / "journal");
        std::size_t number = 0;
        for (std::string line; std::getline(journal, line);)
            if (number++ >= m_seenCalls && !questions.contains(line.substr(0, line.find(' ')))) calls.push_back(line);
        return calls;
    }
    /// Their names.
    std::vector<std::string> CallNames() {
        std::vector<std::string> names = Calls();
        for (std::string& name : names)
            name = name.substr(0, name.find(' '));
        return names;
    }
    void ForgetCalls() {
        std::ifstream journal(m_folder / "journal");
        m_seenCalls = 0;
        for (std::string line; std::getline(journal, line);)
            ++m_seenCalls;
    }

    std::string Path(const std::string& name) const { return (m_folder / name).string(); }
    void Write(const std::string& name, const std::string& text) const {
        std::ofstream(m_folder / name, std::ios::binary) << text;
    }
    std::string Read(const std::string& name) const { return ReadFile(m_folder / name); }
    static std::string ReadFile(const std::filesystem::path& path) {
        std::ostringstream text;
        text << std::ifstream(path, std::ios::binary).rdbuf();
        return text.str();
    }
    static std::string MissingGainFile() {
        std::string folder;
        OSAL::GetModuleDirectory(folder);
        return "Failed opening " + folder + "GainCSV.csv file";
    }
    static std::vector<std::string> Lines(const std::string& text) {
        std::vector<std::string> lines;
        std::istringstream stream(text);
        for (std::string line; std::getline(stream, line);)
            lines.push_back(line);
        return lines;
    }

    std::filesystem::path m_folder;
    std::string m_air = "sim";
    std::ostringstream m_errorStream;
    Host m_host;
    std::unique_ptr<TarnWifiFlows> m_flows;

private:
    std::size_t m_seenCalls = 0;
};
