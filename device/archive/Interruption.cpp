#include "device/archive/Interruption.h"

#include <csignal>
#include <initializer_list>

namespace dubrix {

namespace {

volatile std::sig_atomic_t asked = 0;

} // namespace

void Interruption::note() {
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        struct sigaction action{};
        if (::sigaction(number, nullptr, &action) != 0 || action.sa_handler == SIG_IGN)
            continue;
        // A second one ends it at once.
        action = {};
        action.sa_flags = SA_RESETHAND;
        action.sa_handler = [](int came) { asked = came; };
        ::sigaction(number, &action, nullptr);
    }
}

bool Interruption::isAsked() {
    return asked != 0;
}

void Interruption::follow() {
    if (asked == 0)
        return;
    ::signal(asked, SIG_DFL);
    ::raise(asked);
}

} // namespace dubrix
