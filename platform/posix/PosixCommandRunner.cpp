#include "platform/posix/PosixCommandRunner.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <fstream>
#include <string_view>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ; // POSIX leaves its declaration to the program

namespace dubrix {

namespace {

constexpr int notConfined = 126;
constexpr int notStarted = 127;

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

/// What this process has open beyond the standard streams: found before the fork, since reading a
/// folder takes memory, which a child of several threads must not ask for.
std::vector<int> openDescriptors() {
    std::vector<int> descriptors;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator("/dev/fd", error)) {
        const std::string name = entry.path().filename().native();
        int descriptor = 0;
        std::from_chars(name.data(), name.data() + name.size(), descriptor);
        if (descriptor > STDERR_FILENO)
            descriptors.push_back(descriptor);
    }
    return descriptors;
}

/// By the process and those it has started; it answers for those that it has waited for itself.
std::uint64_t writtenBy(pid_t process) {
    const std::string number = std::to_string(process);
    std::uint64_t bytes = 0;
    std::ifstream counters("/proc/" + number + "/io");
    std::uint64_t value = 0;
    for (std::string name; counters >> name >> value;)
        bytes += name == "wchar:" ? value : 0;
    std::ifstream children("/proc/" + number + "/task/" + number + "/children");
    for (pid_t child = 0; children >> child;)
        bytes += writtenBy(child);
    return bytes;
}

/// Returns when the child has ended; it can still be signalled afterwards.
void waitForEnd(pid_t process) {
    siginfo_t ended{};
    while (::waitid(P_PID, static_cast<id_t>(process), &ended, WEXITED | WNOWAIT) != 0 &&
           errno == EINTR) {
    }
}

} // namespace

PosixCommandRunner::PosixCommandRunner(const std::filesystem::path& root,
                                       const std::filesystem::path& pathsScript,
                                       std::unique_ptr<CommandConfinement> confinement)
    : confinement_(std::move(confinement)) {
    if (root != "/")
        additions_ = {"DUBRIX_ROOT=" + root.string(), "BASH_ENV=" + pathsScript.string()};
}

void PosixCommandRunner::becomeShell(const char* command, char* const* environment,
                                     const std::vector<int>& descriptors) const {
    if (ownGroup_)
        ::setpgid(0, 0);
    for (const int descriptor : descriptors)
        ::close(descriptor);
    // Copies keep their group's rights; the world's right to write is not passed on.
    ::umask(S_IWOTH);
    if (confinement_ && !confinement_->enter())
        ::_exit(notConfined);
    const char* arguments[] = {"/bin/bash", "-c", command, nullptr};
    ::execve(arguments[0], const_cast<char* const*>(arguments), environment);
    ::_exit(notStarted);
}

void PosixCommandRunner::runCommand(const std::string& command) {
    if (isStopped())
        return;
    const std::vector<char*> environment = environmentWith(additions_);
    const std::vector<int> descriptors = openDescriptors();
    const pid_t process = ::fork();
    if (process == 0)
        becomeShell(command.c_str(), environment.data(), descriptors);
    if (process < 0)
        return;
    if (ownGroup_) {
        ::setpgid(process, process); // whichever of the two comes first
        group_ = process;
        if (isStopped())
            ::kill(-process, SIGTERM);
    }
    waitForEnd(process);
    group_ = 0;
    while (::waitpid(process, nullptr, 0) < 0 && errno == EINTR) {
    }
}

std::uint64_t PosixCommandRunner::bytesWritten() const {
    const pid_t group = group_;
    return group > 0 ? writtenBy(group) : 0;
}

void PosixCommandRunner::stop() {
    const bool again = stopped_.exchange(true);
    if (const pid_t group = group_; group > 0)
        ::kill(-group, again ? SIGKILL : SIGTERM);
}

} // namespace dubrix
