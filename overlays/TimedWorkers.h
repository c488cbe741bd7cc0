#pragma once

#include <atomic>
#include <condition_variable>
#include <functional>
#include <list>
#include <mutex>
#include <thread>

namespace dubrix {

/// Threads that do little but sleep, one for each piece of work, and that can be called off at any
/// time. `start` and `cancelAll` belong to the owner's thread, `sleep` to the workers.
class TimedWorkers {
public:
    TimedWorkers() = default;
    /// Cancels all.
    ~TimedWorkers();
    TimedWorkers(const TimedWorkers&) = delete;
    TimedWorkers& operator=(const TimedWorkers&) = delete;

    /// Runs `work`, which must not throw, on a new thread. False, and `work` is not run, when the
    /// system gives no thread.
    bool start(std::function<void()> work);

    /// Lets the calling worker sleep for `seconds`. False, at once, when the workers are being
    /// cancelled: the work should then return.
    bool sleep(double seconds);

    /// Wakes every sleeping worker and returns when all have ended. New ones can be started
    /// afterwards. Must not be called by a worker.
    void cancelAll();

private:
    struct Worker {
        std::atomic<bool> finished = false;
        std::thread thread;
    };

    void joinFinished();

    std::list<Worker> workers_;
    std::mutex mutex_;
    std::condition_variable cancellation_;
    bool cancelling_ = false; ///< guarded by mutex_
};

} // namespace dubrix
