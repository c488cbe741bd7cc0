#pragma once

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace dubrix {

/// The system calls that change names, order something onto the disk, or end a process.
inline const std::vector<long> namingCalls{
#ifdef SYS_rename
    SYS_rename,    SYS_unlink,    SYS_symlink,   SYS_link,      SYS_mkdir,   SYS_rmdir,
#endif
    SYS_renameat2, SYS_unlinkat,  SYS_symlinkat, SYS_linkat,    SYS_mkdirat,
#ifdef SYS_renameat
    SYS_renameat,
#endif
    SYS_fsync,     SYS_fdatasync, SYS_syncfs,    SYS_exit_group};

/// A program and all that it starts, in a session of their own, of which nothing is left when this
/// ends. The program itself ends after a minute.
class ProcessGroup {
public:
    enum class Start { AtOnce, Stepwise };

    /// Starts the words as a program that is looked for in `path` and whose complaints go into that
    /// file.
    ProcessGroup(std::vector<std::string> words, const std::string& path,
                 const std::filesystem::path& said, Start start = Start::AtOnce) {
        // Those whose parent has died are to be waited for, too.
        ::prctl(PR_SET_CHILD_SUBREAPER, 1);
        leader_ = ::fork();
        if (leader_ == 0)
            become(words, path, said, start);
    }
    ~ProcessGroup() {
        for (std::vector<pid_t> left{leader_}; !left.empty(); left = members())
            for (const pid_t process : left) {
                ::kill(process, SIGKILL);
                ::waitpid(process, nullptr, 0); // if it has become this process's own
            }
    }
    ProcessGroup(const ProcessGroup&) = delete;
    ProcessGroup& operator=(const ProcessGroup&) = delete;

    /// Waits for the program itself. Its status as a shell would give it: 128 and the signal's
    /// number when it was killed.
    int wait() const {
        int status = -1;
        ::waitpid(leader_, &status, 0);
        return shellStatus(status);
    }

    /// A system call that one of the processes is about to make.
    struct Step {
        pid_t process = 0;
        /// The program's file name, cut after 15 bytes.
        std::string program{};
        long call = 0;
        /// The how manieth of those calls it is that the program makes, its threads together.
        int count = 0;
    };
    /// Runs a group that starts stepwise to the end of all its processes and calls `before` before
    /// each of their system calls that is one of `calls`, the calling thread standing still
    /// meanwhile. Gives the program's status; nothing where no process may be traced.
    std::optional<int> stepThrough(const std::vector<long>& calls,
                                   const std::function<void(const Step&)>& before) const {
        constexpr long options = PTRACE_O_TRACESYSGOOD | PTRACE_O_TRACECLONE | PTRACE_O_TRACEFORK |
                                 PTRACE_O_TRACEVFORK | PTRACE_O_TRACEEXEC | PTRACE_O_EXITKILL;
        int status = 0;
        ::waitpid(leader_, &status, 0);
        if (!WIFSTOPPED(status) || ::ptrace(PTRACE_SETOPTIONS, leader_, nullptr, options) != 0)
            return std::nullopt;
        ::ptrace(PTRACE_SYSCALL, leader_, nullptr, nullptr);
        int ended = -1;
        std::map<std::string, int> counts;
        // A child's end may be told before its birth.
        std::set<pid_t> born{leader_}, gone;
        while (!std::ranges::includes(gone, born)) {
            const pid_t thread = ::waitpid(-1, &status, __WALL);
            if (thread < 0)
                break;
            if (!WIFSTOPPED(status)) {
                if (thread == leader_)
                    ended = shellStatus(status);
                gone.insert(thread);
                continue;
            }
            const int event = status >> 16;
            if (event == PTRACE_EVENT_CLONE || event == PTRACE_EVENT_FORK ||
                event == PTRACE_EVENT_VFORK) {
                unsigned long child = 0;
                ::ptrace(PTRACE_GETEVENTMSG, thread, nullptr, &child);
                born.insert(static_cast<pid_t>(child));
            }
            const int signal = WSTOPSIG(status);
            const bool isCall = signal == (SIGTRAP | 0x80);
            if (isCall) {
                __ptrace_syscall_info info{};
                ::ptrace(PTRACE_GET_SYSCALL_INFO, thread, sizeof info, &info);
                const auto call = static_cast<long>(info.entry.nr);
                if (info.op == PTRACE_SYSCALL_INFO_ENTRY && std::ranges::count(calls, call) > 0) {
                    Step step = stepOf(thread, call);
                    step.count = ++counts[step.program];
                    before(step);
                }
            }
            // What tracing itself brings is not for the program.
            const bool isOfTracing = isCall || signal == SIGTRAP || signal == SIGSTOP;
            ::ptrace(PTRACE_SYSCALL, thread, nullptr, isOfTracing ? 0L : signal);
        }
        return ended;
    }

private:
    /// All processes of the session, those that have ended and were not waited for, too.
    std::vector<pid_t> members() const {
        std::vector<pid_t> found;
        for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
            std::string line;
            std::getline(std::ifstream(entry.path() / "stat"), line);
            int process = 0, session = 0;
            if (std::sscanf(line.c_str(), "%d (%*[^)]) %*c %*d %*d %d", &process, &session) == 2 &&
                session == leader_)
                found.push_back(process);
        }
        return found;
    }

    static int shellStatus(int status) {
        return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    }

    static Step stepOf(pid_t thread, long call) {
        Step step{.call = call};
        std::ifstream facts("/proc/" + std::to_string(thread) + "/status");
        for (std::string key; facts >> key && key != "Tgid:";)
            if (key == "Name:")
                facts >> step.program;
        facts >> step.process;
        return step;
    }

    [[noreturn]] static void become(std::vector<std::string>& words, const std::string& path,
                                    const std::filesystem::path& said, Start start) {
        ::setsid();
        const int nothing = ::open("/dev/null", O_RDWR);
        ::dup2(nothing, STDIN_FILENO);
        ::dup2(nothing, STDOUT_FILENO);
        ::dup2(::open(said.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644), STDERR_FILENO);
        ::setenv("PATH", path.c_str(), 1);
        ::setenv("ZIPOPT", "-0yq", 1);
        ::setenv("LC_ALL", "C", 1);
        // The leak sanitizer does not work below a tracer.
        ::setenv("ASAN_OPTIONS", "detect_leaks=0", 1);
        std::vector<char*> arguments;
        for (std::string& word : words)
            arguments.push_back(word.data());
        arguments.push_back(nullptr);
        ::alarm(60);
        if (start == Start::Stepwise &&
            (::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0 || ::raise(SIGSTOP) != 0))
            ::_exit(127);
        ::execvp(arguments[0], arguments.data());
        ::_exit(127);
    }

    pid_t leader_;
};

} // namespace dubrix
