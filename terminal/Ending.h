#pragma once

#include "platform/posix/PosixCommandRunner.h"

namespace dubrix {

/// Has the signals that ask for the end (SIGHUP, SIGINT, SIGTERM) stop the runner instead of ending
/// the program; so does the other end of the pipe `descriptor`, when it is not negative, with each
/// byte and with its closing. Called once, on the thread that runs commands; the runner outlives
/// the program's work.
void endByStopping(PosixCommandRunner& runner, int descriptor);

} // namespace dubrix
