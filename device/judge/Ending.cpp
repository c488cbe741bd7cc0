#include "device/judge/Ending.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <sys/signalfd.h>
#include <sys/syscall.h>
#include <vector>

namespace dubrix {

Ending::Ending(pid_t launcher)
    : launcher_(static_cast<int>(::syscall(SYS_pidfd_open, launcher, 0))) {
    launcherIsGone_ = !launcher_.isOpen() && errno == ESRCH;
    std::signal(SIGPIPE, SIG_IGN);
    sigset_t set;
    ::sigemptyset(&set);
    for (const int number : {SIGHUP, SIGINT, SIGTERM, SIGCHLD})
        ::sigaddset(&set, number);
    ::sigprocmask(SIG_BLOCK, &set, nullptr);
    signals_ = Descriptor(::signalfd(-1, &set, SFD_CLOEXEC | SFD_NONBLOCK));
}

bool Ending::wait(std::span<pollfd> others, int milliseconds) {
    if (launcherIsGone_)
        return false;
    std::vector<pollfd> all(others.begin(), others.end());
    all.push_back({.fd = signals_.get(), .events = POLLIN, .revents = 0});
    all.push_back({.fd = launcher_.get(), .events = POLLIN, .revents = 0});
    if (::poll(all.data(), all.size(), milliseconds) < 0)
        return errno == EINTR;
    std::copy_n(all.begin(), others.size(), others.begin());
    launcherIsGone_ = all.back().revents != 0;
    return !launcherIsGone_ && !takeSignals();
}

/// True when one of them asks for the end.
bool Ending::takeSignals() {
    signalfd_siginfo signal{};
    bool ends = false;
    while (::read(signals_.get(), &signal, sizeof signal) == sizeof signal)
        ends = ends || signal.ssi_signo != SIGCHLD;
    return ends;
}

} // namespace dubrix
