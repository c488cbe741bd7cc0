#include "platform/linux/LinuxCommandRunner.h"

#include "platform/linux/PaintingWait.h"

#include <algorithm>
#include <cerrno>
#include <string_view>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace dubrix {

namespace {

constexpr int notConfined = 126;

/// The program's environment, in which the additions ("NAME=value") replace variables of the same
/// name; ends in a null pointer.
std::vector<char*> environmentWith(std::vector<std::string>& additions) {
    std::vector<char*> environment;
    for (char** variable = environ; *variable; ++variable) {
        const std::string_view text = *variable;
        const std::string_view name = text.substr(0, text.find('=') + 1);
        if (std::ranges::none_of(additions, [name](const std::string& addition) {
                return addition.starts_with(name);
            }))
            environment.push_back(*variable);
    }
    for (std::string& addition : additions)
        environment.push_back(addition.data());
    environment.push_back(nullptr);
    return environment;
}

void waitForEnd(pid_t process) {
    while (::waitpid(process, nullptr, 0) < 0 && errno == EINTR) {
    }
}

} // namespace

LinuxCommandRunner::LinuxCommandRunner(const std::filesystem::path& root,
                                       const std::filesystem::path& pathsScript,
                                       std::optional<CommandConfinement> confinement)
    : confinement_(std::move(confinement)) {
    if (root != "/")
        additions_ = {"DUBRIX_ROOT=" + root.string(), "BASH_ENV=" + pathsScript.string()};
}

void LinuxCommandRunner::runCommand(const std::string& command) {
    // Not through strings of the toolkit: names of files are bytes and must arrive as they are.
    const char* arguments[] = {"/bin/bash", "-c", command.c_str(), nullptr};
    std::vector<char*> environment = environmentWith(additions_);

    const pid_t process = ::fork();
    if (process == 0) {
        // Copies keep their group's rights; the world's right to write is not passed on.
        ::umask(S_IWOTH);
        if (confinement_ && !confinement_->enter())
            ::_exit(notConfined);
        ::execve(arguments[0], const_cast<char* const*>(arguments), environment.data());
        ::_exit(127);
    }
    if (process < 0)
        return;
    waitWhilePainting([process] { waitForEnd(process); });
}

} // namespace dubrix
