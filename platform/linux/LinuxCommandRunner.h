#pragma once

#include "platform/CommandRunner.h"
#include "platform/linux/CommandConfinement.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace dubrix {

/// Runs commands on the device whose root folder is `root`.
///
/// With an event loop, the caller waits in a nested one that leaves user input alone: frames keep
/// coming, taps are kept for later. Without one the thread just waits.
///
/// Inside the device's namespace (`root` is "/") the phone's paths are real. Elsewhere the shell
/// reads `pathsScript` first, whose functions map the phone's paths in the arguments of the few
/// tools that the engine calls to the device folder.
///
/// With a `confinement`, a command may do less than this process; one that cannot be confined is
/// not run.
class LinuxCommandRunner final : public CommandRunner {
public:
    LinuxCommandRunner(const std::filesystem::path& root, const std::filesystem::path& pathsScript,
                       std::optional<CommandConfinement> confinement = std::nullopt);

    void runCommand(const std::string& command) override;

private:
    std::vector<std::string> additions_;
    std::optional<CommandConfinement> confinement_;
};

} // namespace dubrix
