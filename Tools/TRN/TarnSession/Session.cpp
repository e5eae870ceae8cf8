#include "Session.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <future>
#include <mutex>
#include <sstream>
#include <string_view>
#include <thread>
#include <utility>

#include "Guarded.h"
#include "Kernel.h"
#include "OSAL/OSAL.h"
#include "PluginLibrary.h"
#include "Streams/AppStreams.h"
#include "Streams/Trace.h"

namespace TarnSession {
namespace {

using StreamsWrapper = SingletonWrapper<Streams::AppStreams>;

constexpr std::size_t mostWarnings = 100;  ///< of one line that are kept
constexpr int noExchange = 259;            ///< exit code of a line that the plug-in didn't answer

std::vector<std::string> TextLines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        if (line.ends_with('\r')) line.pop_back();
        if (!line.empty()) lines.push_back(line);
    }
    return lines;
}

}  // namespace

OSAL::Outcome<> OpenLog(const std::string& path) {
    if (path.empty()) return {};
    if (Streams::AppStreams::OpenLogFile(path, std::ios_base::app)) return {};
    if (OSAL::IsLink(path)) return OSAL::Refusal{"the log file '" + path + "' is a link"};
    return OSAL::Refusal{"can't write the log file '" + path + "'"};
}

OSAL::Outcome<> OpenRadio(const quayCommand::RadioSetup& setup) {
    if (const auto reason = quayCommand::SetUpRadio(setup)) return OSAL::Refusal{*reason};
    // asked of the description: a call on the radio would stand in the journal and count for the fault plan
    if (!quayCommand::AdapterInUse().connected) return OSAL::Refusal{"the adapter isn't connected"};
    return {};
}

/// The plug-in, its thread and its queue. Everything of the plug-in happens on the thread.
class Session::Worker final : public IHostOutput, public Streams::IErrorListener {
public:
    using Job = std::function<void()>;

    Worker(Options options, ISink& sink) : m_options(std::move(options)), m_sink(&sink) {}
    virtual ~Worker() = default;
    Worker(const Worker&) = delete;
    Worker& operator=(const Worker&) = delete;

    static OSAL::Outcome<> Begin(const std::shared_ptr<Worker>& worker, std::function<void(Step)> onStep);
    void Stop();
    void Abandon();
    /// False when the queue is full or the session is at its end.
    bool Push(Job job, bool isBounded);
    /// What `step` answers on the thread. Nothing when the session ends first.
    template <typename T>
    std::optional<T> Ask(std::function<T()> step);
    /// Whatever the plug-in throws is the exchange's failure.
    Exchange RunLine(const std::string& line, LineOptions options);

    void OutputObject(std::string text) override { Send(&ISink::Message, std::move(text)); }
    void Output(std::string text) override { Send(&ISink::Text, std::move(text)); }
    void OutputError(std::string text) override { Send(&ISink::Error, std::move(text)); }
    void OnError(const char* function, const std::string& message) override;

    std::size_t Waiting() const {
        const std::lock_guard lock(m_mutex);
        return m_jobs.size();
    }
    std::optional<std::string> Busy() const {
        const std::lock_guard lock(m_mutex);
        return m_running;
    }
    bool IsAbandoned() const {
        const std::lock_guard lock(m_mutex);
        return m_isAbandoned;
    }
    const std::string& PluginPath() const { return m_library->Path(); }
    std::size_t QueueLength() const { return m_options.queueLength; }

private:
    OSAL::Outcome<> Start(const std::function<void(Step)>& onStep);
    void Work();
    void End();
    void Fill(Exchange& exchange, const std::string& line, LineOptions options);
    void Send(void (ISink::*message)(std::string), std::string text);
    std::vector<std::string> TakeLogged() {
        const std::lock_guard lock(m_mutex);
        return std::exchange(m_logged, {});
    }
    void SetRunning(std::optional<std::string> line) {
        const std::lock_guard lock(m_mutex);
        m_running = std::move(line);
    }

    Options m_options;
    std::optional<PluginLibrary> m_library;
    ITrellisPlugin* m_plugin = nullptr;
    bool m_isInitialised = false;
    std::ostringstream m_errorStream;
    std::vector<std::string> m_logged;  ///< at error level, of the running line

    std::mutex m_sinkMutex;
    ISink* m_sink;

    mutable std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<Job> m_jobs;
    std::optional<std::string> m_running;
    bool m_isStopping = false;
    bool m_isAbandoned = false;
    std::thread m_thread;
};

OSAL::Outcome<> Session::Worker::Begin(const std::shared_ptr<Worker>& worker, std::function<void(Step)> onStep) {
    std::promise<OSAL::Outcome<>> opened;
    auto isOpen = opened.get_future();
    worker->m_thread = std::thread([worker, onStep = std::move(onStep), opened = std::move(opened)]() mutable {
        OSAL::PrepareCrashStack();
        OSAL::Outcome<> start;
        const auto guarded = Guarded("can't start", [&] { start = worker->Start(onStep); });
        if (!guarded) start = guarded;
        const bool isFine = static_cast<bool>(start);
        opened.set_value(start);
        if (isFine) worker->Work();
        worker->End();
    });
    return isOpen.get();
}

OSAL::Outcome<> Session::Worker::Start(const std::function<void(Step)>& onStep) {
    const auto begin = [&](Step step) {
        if (onStep) onStep(step);
    };
    auto& streams = *StreamsWrapper::accessObject();
    streams.errorStream = &m_errorStream;
    streams.errorListener = this;
    begin(Step::Kernel);
    if (auto kernel = CheckKernel(); !kernel) return kernel;
    begin(Step::Log);
    if (auto log = OpenLog(m_options.logPath); !log) return log;
    begin(Step::Radio);
    if (auto radio = OpenRadio(m_options.radio); !radio) return radio;
    begin(Step::Plugin);
    auto library = PluginLibrary::Load();
    if (!library) return library.Why();
    m_library.emplace(std::move(*library));
    begin(Step::Start);
    return Guarded("can't start on this adapter", [&] {
        m_plugin = m_library->Create(this, m_options.isFrontEnd);
        if (!m_plugin) throw std::bad_alloc();
        m_plugin->Init();
        m_isInitialised = true;
    });
}

void Session::Worker::End() {
    auto& streams = *StreamsWrapper::accessObject();
    if (streams.errorStream == &m_errorStream) streams.errorStream = nullptr;
    IErrorListener* self = this;
    streams.errorListener.compare_exchange_strong(self, nullptr);
    if (IsAbandoned()) return;  // the process is about to end
    // what fails on the way out has nobody left to tell
    if (m_plugin && m_isInitialised) static_cast<void>(Guarded("", [this] { m_plugin->DeInit(); }));
    if (m_plugin) static_cast<void>(Guarded("", [this] { m_library->Destroy(); }));
}

void Session::Worker::Work() {
    std::unique_lock lock(m_mutex);
    while (true) {
        m_changed.wait(lock, [this] { return m_isStopping || !m_jobs.empty(); });
        if (m_isStopping) return;
        const Job job = std::move(m_jobs.front());
        m_jobs.pop_front();
        lock.unlock();
        const auto done = Guarded("who waited for a line failed", job);
        if (!done && Streams::IsTraceOn(Streams::TraceError))
            Streams::WriteTrace(Streams::TraceError, __FILE__, "TarnSession::Session", done.Reason());
        lock.lock();
    }
}

bool Session::Worker::Push(Job job, bool isBounded) {
    {
        const std::lock_guard lock(m_mutex);
        if (m_isStopping || (isBounded && m_jobs.size() >= m_options.queueLength)) return false;
        m_jobs.push_back(std::move(job));
    }
    m_changed.notify_all();
    return true;
}

template <typename T>
std::optional<T> Session::Worker::Ask(std::function<T()> step) {
    // the job owns the promise: a job that is dropped breaks it
    auto answer = std::make_shared<std::promise<T>>();
    auto isDone = answer->get_future();
    if (!Push([answer = std::move(answer), step = std::move(step)] { answer->set_value(step()); }, false))
        return std::nullopt;
    try {
        return isDone.get();
    } catch (const std::future_error&) {
        return std::nullopt;
    }
}

void Session::Worker::Stop() {
    std::deque<Job> dropped;  // destroyed outside the lock
    bool isAbandoned = false;
    {
        const std::lock_guard lock(m_mutex);
        m_isStopping = true;
        dropped.swap(m_jobs);
        isAbandoned = m_isAbandoned;
    }
    m_changed.notify_all();
    if (isAbandoned)
        m_thread.detach();
    else
        m_thread.join();
}

void Session::Worker::Abandon() {
    {
        const std::lock_guard lock(m_mutex);
        m_isAbandoned = m_isStopping = true;
    }
    const std::lock_guard lock(m_sinkMutex);
    m_sink = nullptr;
}

void Session::Worker::OnError(const char* function, const std::string& message) {
    // its failures stand in the answer too, and the default gain file, which a reset looks for, is seldom there
    if (std::string_view(function ? function : "").ends_with("::SetGainFilename")) return;
    const std::lock_guard lock(m_mutex);
    if (m_logged.size() < mostWarnings) m_logged.push_back(message);
}

void Session::Worker::Send(void (ISink::*message)(std::string), std::string text) {
    const std::lock_guard lock(m_sinkMutex);
    if (m_sink) (m_sink->*message)(std::move(text));
}

Exchange Session::Worker::RunLine(const std::string& line, LineOptions options) {
    Exchange exchange;
    const auto ran = Guarded("the line ended early", [&] { Fill(exchange, line, options); });
    SetRunning(std::nullopt);
    if (ran) return exchange;
    exchange.exitCode = noExchange;
    exchange.error = ran.Reason();
    return exchange;
}

void Session::Worker::Fill(Exchange& exchange, const std::string& line, LineOptions options) {
    exchange.line = line;
    exchange.left = line;
    m_errorStream.str({});
    TakeLogged();
    SetRunning(line);
    exchange.exitCode = m_plugin->RunCommand(exchange.left, exchange.output, exchange.error, options.plainOutput);
    SetRunning(std::nullopt);
    exchange.warnings = TextLines(m_errorStream.str());
    for (std::string& message : TakeLogged())
        if (std::ranges::find(exchange.warnings, message) == exchange.warnings.end())
            exchange.warnings.push_back(std::move(message));
    // The engine says only that a capture was empty; the radio knows why.
    if (exchange.error.find("empty ADC") != std::string::npos)
        exchange.captureTrouble = quayCommand::CaptureTrouble().value_or("");
}

Session::Session(std::shared_ptr<Worker> worker) : m_worker(std::move(worker)) {}

OSAL::Outcome<std::unique_ptr<Session>> Session::Open(const Options& options, ISink& sink,
                                                      std::function<void(Step)> onStep) {
    auto worker = std::make_shared<Worker>(options, sink);
    const auto start = Worker::Begin(worker, std::move(onStep));
    std::unique_ptr<Session> session(new Session(std::move(worker)));  // its end joins the thread
    if (!start) return start.Why();
    return session;
}

Session::~Session() {
    m_worker->Stop();
}

OSAL::Outcome<> Session::Post(std::string line, LineOptions options, Done done) {
    const auto job = [worker = m_worker.get(), line = std::move(line), options, done = std::move(done)] {
        Exchange exchange = worker->RunLine(line, options);
        if (done && !worker->IsAbandoned()) done(std::move(exchange));
    };
    if (m_worker->Push(job, true)) return {};
    return OSAL::Refusal{"the plug-in is busy: " + std::to_string(m_worker->QueueLength()) + " lines wait already"};
}

Exchange Session::Run(const std::string& line, LineOptions options) {
    auto exchange = m_worker->Ask<Exchange>([this, &line, options] { return m_worker->RunLine(line, options); });
    if (exchange) return std::move(*exchange);
    Exchange refused;
    refused.line = refused.left = line;
    refused.exitCode = noExchange;
    refused.error = "the session is at its end";
    return refused;
}

std::optional<std::string> Session::Busy() const {
    return m_worker->Busy();
}

std::size_t Session::Waiting() const {
    return m_worker->Waiting();
}

OSAL::Outcome<AdapterFacts> Session::Adapter() {
    auto facts = FactsOf(quayCommand::AdapterInUse());
    Run("", {.plainOutput = true});  // takes away what an earlier step left to say
    const Exchange exchange = Run("-get_supported_config", {.plainOutput = true});
    if (exchange.exitCode == 0 && AddSupportedConfig(exchange.output, facts)) return facts;
    return OSAL::Refusal{"the plug-in doesn't tell its configuration: " + ErrorSentence(exchange)};
}

std::string Session::AirText() const {
    return quayCommand::DescribeAir();
}

bool Session::SetWorkload(bool running) {
    return m_worker->Ask<bool>([running] { return quayCommand::SetRadioWorkload(running); }).value_or(false);
}

std::optional<std::string> Session::RadioTrouble() const {
    return quayCommand::RadioTrouble();
}

const std::string& Session::PluginPath() const {
    return m_worker->PluginPath();
}

void Session::Abandon() {
    m_worker->Abandon();
}

}  // namespace TarnSession
