#include "overlays/TimedWorkers.h"

#include <chrono>
#include <system_error>
#include <utility>

namespace dubrix {

TimedWorkers::~TimedWorkers() {
    cancelAll();
}

bool TimedWorkers::start(std::function<void()> work) {
    joinFinished();
    Worker& worker = workers_.emplace_back();
    try {
        worker.thread = std::thread([&worker, work = std::move(work)]() mutable {
            work();
            // What the work holds goes before the worker counts as finished.
            work = nullptr;
            worker.finished = true;
        });
    } catch (const std::system_error&) {
        workers_.pop_back();
        return false;
    }
    return true;
}

bool TimedWorkers::sleep(double seconds) {
    const auto end = std::chrono::steady_clock::now() +
                     std::chrono::duration_cast<std::chrono::steady_clock::duration>(
                         std::chrono::duration<double>(seconds));
    std::unique_lock lock(mutex_);
    return !cancellation_.wait_until(lock, end, [this] { return cancelling_; });
}

void TimedWorkers::cancelAll() {
    {
        const std::lock_guard lock(mutex_);
        cancelling_ = true;
    }
    cancellation_.notify_all();
    for (Worker& worker : workers_)
        worker.thread.join();
    workers_.clear();
    const std::lock_guard lock(mutex_);
    cancelling_ = false;
}

void TimedWorkers::joinFinished() {
    workers_.remove_if([](Worker& worker) {
        if (!worker.finished)
            return false;
        worker.thread.join();
        return true;
    });
}

} // namespace dubrix
