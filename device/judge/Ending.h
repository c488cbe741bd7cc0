#pragma once

#include "files/Descriptor.h"

#include <poll.h>
#include <span>
#include <sys/types.h>

namespace dubrix {

/// Tells a process that works for the launcher when to end: at a signal that asks for it, and when
/// the launcher is gone, however that ended.
class Ending {
public:
    /// From now on the signals are taken here, also those of children that have ended; SIGPIPE is
    /// ignored.
    explicit Ending(pid_t launcher);

    /// Waits like poll until one of `others` is ready, a child has ended or `milliseconds` (if any)
    /// have passed; a negative descriptor is left out. False when it is time to end.
    bool wait(std::span<pollfd> others, int milliseconds = -1);
    /// Whether the end was the launcher's.
    bool launcherIsGone() const { return launcherIsGone_; }

private:
    bool takeSignals();

    Descriptor signals_;
    Descriptor launcher_;
    bool launcherIsGone_ = false;
};

} // namespace dubrix
