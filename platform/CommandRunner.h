#pragma once

#include <string>

namespace dubrix {

/// Runs shell commands, one at a time.
class CommandRunner {
public:
    virtual ~CommandRunner() = default;

    /// Starts "/bin/bash" with the arguments "-c" and `command` and returns when it has ended. The
    /// process inherits the program's standard streams and environment. Its exit status is not
    /// reported, nor is a shell that could not be started: callers look at what the command left
    /// behind. A window may be painted while the call waits, but no user input is delivered.
    virtual void runCommand(const std::string& command) = 0;
};

} // namespace dubrix
