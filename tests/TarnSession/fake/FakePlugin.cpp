// A plug-in that does what a line says, so that the host meets what the real one seldom does. It names its start and
// end on standard error.
#include <chrono>
#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <string>
#include <thread>

#include "ITrellisPlugin.h"
#include "Streams/AppStreams.h"
#include "Streams/Trace.h"

namespace {

IHostOutput* hostOutput = nullptr;

class FakePlugin final : public ITrellisPlugin {
public:
    explicit FakePlugin(bool web) : m_isWeb(web) {}
    ~FakePlugin() override { std::cerr << "destroyed\n"; }

    void Init() override {
        if (std::getenv("FAKE_INIT_THROWS")) throw new std::runtime_error("thrown as a pointer");
        std::cerr << "init\n";
    }

    std::int32_t RunCommand(std::string& line, std::string& output, std::string& error, bool plainOutput) override {
        if (line == "speak") {
            hostOutput->OutputObject(m_isWeb ? "{\"web\":1}" : "{\"web\":0}");
            hostOutput->Output("text");
            hostOutput->OutputError("complaint\n");
        } else if (line == "sleep") {
            hostOutput->Output("asleep");
            std::this_thread::sleep_for(std::chrono::minutes(5));
        } else if (line == "nap") {
            std::this_thread::sleep_for(std::chrono::milliseconds(200));
            hostOutput->Output("awake");
        } else if (line == "warn") {
            Streams::AppStreams::GetError() << "first\nsecond\n";
            for (const char* text : {"second", "logged"})
                if (Streams::IsTraceOn(Streams::TraceError))
                    Streams::WriteTrace(Streams::TraceError, "", "FakePlugin::RunCommand", text);
        } else if (line == "throw") {
            throw new std::runtime_error("thrown by a line");
        } else if (line == "fail") {
            return 259;
        } else if (line == "bytes") {
            output = "a\xFFz";
        } else if (line == "plain") {
            output = plainOutput ? "yes" : "no";
        } else {
            error = "unknown\n";
            output = "ERROR:" + error;
            return 256;
        }
        line.clear();
        return 0;
    }

    void DeInit() override { std::cerr << "deinit\n"; }

private:
    bool m_isWeb;
};

FakePlugin* instance = nullptr;

}  // namespace

extern "C" __attribute__((visibility("default"))) ITrellisPlugin* CreateInstance(IHostOutput* host, bool web) {
    hostOutput = host;
    return instance = new FakePlugin(web);
}

extern "C" __attribute__((visibility("default"))) void DestroyInstance() {
    delete instance;
    instance = nullptr;
}
