#pragma once

#include "platform/posix/PosixCommandRunner.h"

namespace dubrix {

/// Has the signals that ask for the end (SIGHUP, SIGINT, SIGTERM) stop the runner, as long as this
/// lives, and nothing afterwards, instead of ending the program; so does the other end of the pipe
/// `descriptor`, when it is not negative, with each byte and with its closing. Made once, on the
/// thread that runs commands.
class EndByStopping {
public:
    EndByStopping(PosixCommandRunner& runner, int descriptor);
    ~EndByStopping();
    EndByStopping(const EndByStopping&) = delete;
    EndByStopping& operator=(const EndByStopping&) = delete;
};

} // namespace dubrix
