#pragma once

#include "platform/CommandRunner.h"

#include <filesystem>
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
class LinuxCommandRunner final : public CommandRunner {
public:
    LinuxCommandRunner(const std::filesystem::path& root, const std::filesystem::path& pathsScript);

    void runCommand(const std::string& command) override;

private:
    std::vector<std::string> additions_;
};

} // namespace dubrix
