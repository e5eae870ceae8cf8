#include "PluginWorker.h"

namespace TarnHost {

Result<std::unique_ptr<PluginWorker>> PluginWorker::Open(const HostOptions& options, PluginVariant variant,
                                                         Receiver& receiver) {
    std::unique_ptr<PluginWorker> worker(new PluginWorker());
    worker->m_thread =
        std::thread([raw = worker.get(), options, variant, &receiver] { raw->Work(options, variant, receiver); });
    std::unique_lock lock(worker->m_mutex);
    worker->m_changed.wait(lock, [&] { return worker->m_isOpen; });
    if (worker->m_failure) {
        const Failure failure = *worker->m_failure;
        lock.unlock();
        return failure;
    }
    lock.unlock();
    return worker;
}

PluginWorker::~PluginWorker() {
    {
        const std::lock_guard lock(m_mutex);
        m_isStopping = true;
    }
    m_changed.notify_all();
    if (m_thread.joinable()) m_thread.join();
}

void PluginWorker::Work(const HostOptions& options, PluginVariant variant, Receiver& receiver) {
    auto session = Session::Open(options, variant, receiver);
    std::unique_lock lock(m_mutex);
    m_isOpen = true;
    if (!session) m_failure = session.Why();
    m_changed.notify_all();
    while (session) {
        m_changed.wait(lock, [this] { return m_isStopping || m_line; });
        if (m_isStopping) return;
        const std::string line = *m_line;
        m_line.reset();
        lock.unlock();
        Exchange answer = (*session)->Run(line);
        lock.lock();
        m_answer = std::move(answer);
        m_changed.notify_all();
    }
}

bool PluginWorker::IsBusy() const {
    const std::lock_guard lock(m_mutex);
    return m_isBusy;
}

void PluginWorker::Start(const std::string& line) {
    {
        const std::lock_guard lock(m_mutex);
        m_line = line;
        m_isBusy = true;
    }
    m_changed.notify_all();
}

std::optional<Exchange> PluginWorker::Wait(const InterruptWatch& watch) {
    constexpr auto lookAtSignals = std::chrono::milliseconds(20);
    std::unique_lock lock(m_mutex);
    while (!m_changed.wait_for(lock, lookAtSignals, [this] { return m_answer.has_value(); })) {
        if (watch.IsRequested()) return std::nullopt;
    }
    m_isBusy = false;
    return std::exchange(m_answer, std::nullopt);
}

}  // namespace TarnHost
