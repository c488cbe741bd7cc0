#pragma once

#include <cstdlib>
#include <functional>
#include <string>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace dubrix {

/// Runs a program and calls `moment` before each of its system calls that changes names, orders
/// something onto the disk or ends it, the calling thread standing still meanwhile. `moment` gets
/// the call's number and how often the program has made it. Gives the exit status, or -1.
inline int runStepwise(std::vector<std::string> words,
                       const std::function<void(long call, int count)>& moment) {
    static const std::vector<long> calls{
#ifdef SYS_rename
        SYS_rename,    SYS_unlink,    SYS_symlink,   SYS_link,      SYS_mkdir,   SYS_rmdir,
#endif
        SYS_renameat2, SYS_unlinkat,  SYS_symlinkat, SYS_linkat,    SYS_mkdirat,
#ifdef SYS_renameat
        SYS_renameat,
#endif
        SYS_fsync,     SYS_fdatasync, SYS_syncfs,    SYS_exit_group};

    const pid_t child = ::fork();
    if (child == 0) {
        ::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        ::setenv("ASAN_OPTIONS", "detect_leaks=0", 1); // it does not work below a tracer
        ::raise(SIGSTOP);
        std::vector<char*> arguments;
        for (std::string& word : words)
            arguments.push_back(word.data());
        arguments.push_back(nullptr);
        ::execv(arguments[0], arguments.data());
        ::_exit(127);
    }
    int status = 0;
    int ended = -1;
    ::waitpid(child, &status, 0);
    constexpr long options = PTRACE_O_TRACESYSGOOD | PTRACE_O_TRACECLONE | PTRACE_O_EXITKILL;
    if (::ptrace(PTRACE_SETOPTIONS, child, nullptr, options) != 0)
        return -1;
    ::ptrace(PTRACE_SYSCALL, child, nullptr, nullptr);
    std::vector<int> counts(calls.size());
    for (pid_t thread = 0; (thread = ::waitpid(-1, &status, __WALL)) > 0;) {
        if (WIFEXITED(status) && thread == child)
            ended = WEXITSTATUS(status);
        if (!WIFSTOPPED(status))
            continue;
        long signal = WSTOPSIG(status);
        if (signal == (SIGTRAP | 0x80)) {
            __ptrace_syscall_info info{};
            ::ptrace(PTRACE_GET_SYSCALL_INFO, thread, sizeof info, &info);
            const auto found =
                std::find(calls.begin(), calls.end(), static_cast<long>(info.entry.nr));
            if (info.op == PTRACE_SYSCALL_INFO_ENTRY && found != calls.end())
                moment(*found, ++counts[static_cast<std::size_t>(found - calls.begin())]);
        }
        // What tracing itself brings is not for the program.
        const bool isOfTracing =
            signal == (SIGTRAP | 0x80) || signal == SIGTRAP || signal == SIGSTOP;
        ::ptrace(PTRACE_SYSCALL, thread, nullptr, isOfTracing ? 0 : signal);
    }
    return ended;
}

} // namespace dubrix
