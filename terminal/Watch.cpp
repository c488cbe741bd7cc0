#include "terminal/Watch.h"

#include <chrono>
#include <condition_variable>
#include <csignal>
#include <mutex>
#include <pthread.h>

namespace dubrix {

namespace {

constexpr std::chrono::milliseconds period{200};

} // namespace

Watch::Watch(const std::function<void()>& look)
    : thread_([&look](const std::stop_token& ended) {
          // What asks for the end is for the thread that works.
          sigset_t signals;
          ::sigfillset(&signals);
          ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
          std::mutex alone;
          std::unique_lock lock(alone);
          std::condition_variable_any end;
          while (!end.wait_for(lock, ended, period, [&ended] { return ended.stop_requested(); }))
              look();
      }) {}

} // namespace dubrix
