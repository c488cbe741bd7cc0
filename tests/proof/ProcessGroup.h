#pragma once

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace dubrix {

/// A program and all that it starts, in a process group of their own, of which nothing is left when
/// this ends. This process is to be a subreaper, so that those whose parent has died are its own.
class ProcessGroup {
public:
    struct Member {
        pid_t process;
        /// The program's file name, cut after 15 bytes.
        std::string program;
    };

    /// Starts the words as a program that is looked for in `path` and whose standard output is
    /// that file.
    ProcessGroup(std::vector<std::string> words, const std::string& path,
                 const std::filesystem::path& output)
        : leader_(::fork()) {
        if (leader_ == 0)
            become(words, path, output);
        ::setpgid(leader_, leader_);
    }
    ~ProcessGroup() {
        ::kill(-leader_, SIGKILL);
        waitForAll();
    }
    ProcessGroup(const ProcessGroup&) = delete;
    ProcessGroup& operator=(const ProcessGroup&) = delete;

    /// Waits for the program itself. Its status as a shell would give it: 128 and the signal's
    /// number when it was killed.
    int wait() const {
        int status = -1;
        while (::waitpid(leader_, &status, 0) < 0 && errno == EINTR) {
        }
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }
    /// Waits for what the program has started and not waited for.
    void waitForAll() const {
        while (::waitpid(-leader_, nullptr, 0) > 0 || errno == EINTR) {
        }
    }

    pid_t leader() const { return leader_; }

    /// Those that have not ended, sorted by their numbers.
    std::vector<Member> members() const {
        std::vector<Member> found;
        std::error_code error;
        for (const auto& entry : std::filesystem::directory_iterator("/proc", error)) {
            const std::string number = entry.path().filename().native();
            if (!std::all_of(number.begin(), number.end(), ::isdigit))
                continue;
            std::string line;
            std::getline(std::ifstream(entry.path() / "stat"), line);
            const std::size_t start = line.find('('), end = line.rfind(')');
            char state = 'Z';
            int parent = 0, group = 0;
            if (end == std::string::npos ||
                std::sscanf(line.c_str() + end + 1, " %c %d %d", &state, &parent, &group) != 3 ||
                group != leader_ || state == 'Z')
                continue;
            found.push_back({std::stoi(number), line.substr(start + 1, end - start - 1)});
        }
        std::sort(found.begin(), found.end(), [](const Member& left, const Member& right) {
            return left.process < right.process;
        });
        return found;
    }

private:
    [[noreturn]] static void become(std::vector<std::string>& words, const std::string& path,
                                    const std::filesystem::path& output) {
        ::setpgid(0, 0);
        const int nothing = ::open("/dev/null", O_RDWR);
        ::dup2(nothing, STDIN_FILENO);
        ::dup2(::open(output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644), STDOUT_FILENO);
        ::dup2(nothing, STDERR_FILENO);
        ::setenv("PATH", path.c_str(), 1);
        ::setenv("ZIPOPT", "-0yq", 1);
        ::setenv("LC_ALL", "C", 1);
        // The leak sanitizer does not work below a tracer.
        ::setenv("ASAN_OPTIONS", "detect_leaks=0", 1);
        std::vector<char*> arguments;
        for (std::string& word : words)
            arguments.push_back(word.data());
        arguments.push_back(nullptr);
        ::execvp(arguments[0], arguments.data());
        ::_exit(127);
    }

    pid_t leader_;
};

} // namespace dubrix
