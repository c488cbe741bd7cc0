#pragma once

#include "platform/CommandRunner.h"
#include "platform/posix/CommandConfinement.h"

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <sys/types.h>
#include <vector>

namespace dubrix {

/// Runs commands on the device whose root folder is `root`; the calling thread waits.
///
/// Inside the device's namespace (`root` is "/") the phone's paths are real. Elsewhere the shell
/// reads `pathsScript` first, whose functions map the phone's paths in the arguments of the few
/// tools that the engine calls to the device folder.
///
/// With a `confinement`, a command may do less than this process; one that cannot be confined is
/// not run. A command has the standard streams and no other descriptor of this process.
class PosixCommandRunner final : public CommandRunner {
public:
    explicit PosixCommandRunner(const std::filesystem::path& root,
                                const std::filesystem::path& pathsScript = {},
                                std::unique_ptr<CommandConfinement> confinement = nullptr);

    void runCommand(const std::string& command) override;

    /// Gives commands a process group of their own from now on, so that `stop` reaches all that a
    /// command has started, and a terminal's Ctrl-C only this process.
    void makeStoppable() { ownGroup_ = true; }
    /// Has the command that is running end, with all of its group, and no other start afterwards:
    /// runCommand returns as soon as it has ended. Called again, kills it. For commands of their
    /// own group; from the thread that runs them, that is from a signal handler there.
    void stop();
    bool isStopped() const { return stopped_; }

    /// How many bytes the command that is running and all that it has started have written by now;
    /// 0 when none is running and where the system does not tell. For commands of their own group;
    /// any thread.
    std::uint64_t bytesWritten() const;

private:
    [[noreturn]] void becomeShell(const char* command, char* const* environment,
                                  const std::vector<int>& descriptors) const;

    std::vector<std::string> additions_;
    std::unique_ptr<CommandConfinement> confinement_;
    bool ownGroup_ = false;
    std::atomic<bool> stopped_ = false;
    /// The group of the command that is running; 0 for none.
    std::atomic<pid_t> group_ = 0;
};

} // namespace dubrix
