#include "device/confine/NamespaceTrial.h"

#include "files/FileTree.h"
#include "files/WholeFile.h"

#include <cerrno>
#include <fcntl.h>
#include <fstream>
#include <sched.h>
#include <string_view>
#include <sys/mount.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace dubrix {

namespace {

/// Waits for a child; the error number that it ended with.
int errorOf(pid_t child) {
    if (child < 0)
        return errno;
    int status = 0;
    while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : EINTR;
}

/// In the first process of the new namespaces: the processes' file system needs both of them.
int mountProcesses() {
    if (::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        ::mount("proc", "/proc", "proc", MS_NOSUID | MS_NODEV | MS_NOEXEC, nullptr) != 0)
        return errno;
    return 0;
}

int enterNamespaces() {
    const uid_t user = ::geteuid();
    const gid_t group = ::getegid();
    const int kinds = CLONE_NEWNS | CLONE_NEWPID | CLONE_NEWNET | CLONE_NEWIPC | CLONE_NEWUTS;
    if (::unshare(user == 0 ? kinds : kinds | CLONE_NEWUSER) != 0)
        return errno;
    const auto itself = [](unsigned number) { return "0 " + std::to_string(number) + " 1\n"; };
    if (user != 0 && (!writeInto("/proc/self/uid_map", itself(user)) ||
                      !writeInto("/proc/self/setgroups", "deny") ||
                      !writeInto("/proc/self/gid_map", itself(group))))
        return errno;
    const pid_t first = ::fork();
    if (first == 0)
        ::_exit(mountProcesses());
    return errorOf(first);
}

/// Whether the system's limit of some kind of namespace is none at all.
bool noneAllowed() {
    for (const char* kind : {"user", "mnt", "pid", "net", "ipc", "uts"}) {
        std::ifstream limit(std::string("/proc/sys/user/max_") + kind + "_namespaces");
        long allowed = 1;
        if (limit >> allowed && allowed == 0)
            return true;
    }
    return false;
}

} // namespace

NamespaceRefusal tryNamespaces() {
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(enterNamespaces());
    const int error = errorOf(child);
    if (error == 0)
        return {false, ""};
    const bool forbidden = error == EPERM || error == EACCES || error == ENOSYS ||
                           error == EINVAL || (error == ENOSPC && noneAllowed());
    return {forbidden, std::generic_category().message(error)};
}

} // namespace dubrix
