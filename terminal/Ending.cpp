#include "terminal/Ending.h"

#include <atomic>
#include <cerrno>
#include <csignal>
#include <pthread.h>
#include <thread>
#include <unistd.h>

namespace dubrix {

namespace {

std::atomic<PosixCommandRunner*> stopped = nullptr;

void stop(int) {
    const int kept = errno;
    if (PosixCommandRunner* const runner = stopped)
        runner->stop();
    errno = kept;
}

constexpr int endings[] = {SIGHUP, SIGINT, SIGTERM};

/// For the thread that watches the pipe: what asks for the end is for the other one.
void passEndOn(int descriptor, pthread_t to) {
    sigset_t signals;
    ::sigfillset(&signals);
    ::pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    char byte = 0;
    ssize_t count = 0;
    do {
        count = ::read(descriptor, &byte, 1);
        // NOLINTNEXTLINE(bugprone-bad-signal-to-kill-thread): the other thread handles it
        ::pthread_kill(to, SIGTERM);
    } while (count > 0);
}

} // namespace

EndByStopping::EndByStopping(PosixCommandRunner& runner, int descriptor) {
    stopped = &runner;
    struct sigaction action{};
    action.sa_handler = stop; // a read that waits for an answer ends with it
    for (const int signal : endings)
        ::sigaction(signal, &action, nullptr);
    if (descriptor >= 0)
        std::thread(passEndOn, descriptor, ::pthread_self()).detach();
}

EndByStopping::~EndByStopping() {
    stopped = nullptr;
}

} // namespace dubrix
