#pragma once

#include "files/Descriptor.h"

#include <string>

namespace dubrix {

/// A bound on how many processes and threads there are on the device.
///
/// For an ordinary person the kernel counts by user within the device's own user namespace
/// (RLIMIT_NPROC, set there). Root is exempt from that count; for root there is a control group,
/// where the system has the controller "pids" and lets a group be made.
class ProcessCount {
public:
    ProcessCount() = default;
    ProcessCount(const ProcessCount&) = delete;
    ProcessCount& operator=(const ProcessCount&) = delete;
    /// Removes the group, when nobody is in it any more.
    ~ProcessCount();

    /// Makes the group for root; false where there cannot be one.
    bool bound(unsigned most);
    /// Puts the calling process, and so all that it starts, into the group, if there is one.
    bool join() const;

private:
    std::string group_;
    Descriptor lock_;
};

} // namespace dubrix
