// What a hostile application does once its name has become a command: tries to leave the device by
// every way that is known to us and prints a line for each that is open.
//
// attacker WHO SECRET PLACE: WHO is "engine" for a command of the engine, else "device"; SECRET
// stands in the desktop's environment, PLACE is a folder of the desktop. On the desktop itself,
// "attacker swap ONE OTHER" exchanges two names without end.

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <functional>
#include <linux/perf_event.h>
#include <linux/sched.h>
#include <sched.h>
#include <string>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr long highBits = 1L << 32;
constexpr unsigned tooManyProcesses = 4000;

void broke(const std::string& what) {
    std::printf("open: %s\n", what.c_str());
}

/// The call must be refused with this error, whatever it would have done.
template<class... Arguments>
void refused(const char* what, int error, long call, Arguments... arguments) {
    errno = 0;
    if (::syscall(call, arguments...) >= 0)
        broke(what);
    else if (errno != error)
        broke(std::string(what) + " fails by itself only: " + std::strerror(errno));
}

std::string contentsOf(const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::vector<std::string> namesIn(const std::string& folder) {
    std::vector<std::string> names;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(folder, error))
        names.push_back(entry.path().filename());
    return names;
}

void attackTerminal() {
    const char byte = '\n';
    for (const long bits : {0L, highBits}) {
        refused("TIOCSTI", EPERM, SYS_ioctl, 0, TIOCSTI | bits, &byte);
        refused("TIOCLINUX", EPERM, SYS_ioctl, 0, 0x541cL | bits, &byte);
    }
    if (::open("/dev/tty", O_RDWR) >= 0)
        broke("a controlling terminal");
    for (const int stream : {0, 1, 2})
        if (::isatty(stream) == 1)
            broke("a terminal as standard stream");
    char typed = 0;
    if (::read(0, &typed, 1) != 0)
        broke("somebody's input");
    if (::write(0, &byte, 1) > 0)
        broke("writing to the standard input");
}

void attackKernel() {
    refused("keyctl", EPERM, SYS_keyctl, 0, -3, 1);
    refused("add_key", EPERM, SYS_add_key, "user", "name", "value", 5, -3);
    refused("request_key", EPERM, SYS_request_key, "user", "name", nullptr, 0);
    refused("ptrace", EPERM, SYS_ptrace, PTRACE_TRACEME, 0, 0, 0);
    refused("process_vm_readv", EPERM, SYS_process_vm_readv, ::getppid(), nullptr, 0, nullptr, 0,
            0);
    refused("perf_event_open", EPERM, SYS_perf_event_open, nullptr, 0, -1, -1, 0);
    refused("bpf", EPERM, SYS_bpf, 0, nullptr, 0);
    refused("userfaultfd", EPERM, SYS_userfaultfd, 0);
    refused("mount", EPERM, SYS_mount, "tmpfs", "/tmp", "tmpfs", 0, nullptr);
    refused("umount2", EPERM, SYS_umount2, "/tmp", MNT_DETACH);
    refused("pivot_root", EPERM, SYS_pivot_root, "/", "/");
    refused("chroot", EPERM, SYS_chroot, "/tmp");
    refused("setns", EPERM, SYS_setns, -1, 0);
    refused("open_tree", ENOSYS, SYS_open_tree, AT_FDCWD, "/", 1);
    refused("fsopen", ENOSYS, SYS_fsopen, "tmpfs", 0);
    refused("io_uring_setup", ENOSYS, SYS_io_uring_setup, 1, nullptr);
    refused("openat2", ENOSYS, SYS_openat2, AT_FDCWD, "/tmp", nullptr, 0);
    refused("clone3", ENOSYS, SYS_clone3, nullptr, 0);
    refused("a call of tomorrow", ENOSYS, 500);
}

void attackNamespaces() {
    const struct {
        const char* name;
        long kind;
    } kinds[] = {{"user", CLONE_NEWUSER},    {"mount", CLONE_NEWNS}, {"process", CLONE_NEWPID},
                 {"network", CLONE_NEWNET},  {"name", CLONE_NEWUTS}, {"memory", CLONE_NEWIPC},
                 {"group", CLONE_NEWCGROUP}, {"time", CLONE_NEWTIME}};
    for (const auto& [name, kind] : kinds) {
        refused(name, EPERM, SYS_unshare, kind);
        if (kind == CLONE_NEWTIME)
            continue; // not to be had by clone
        for (const long bits : {0L, highBits}) {
            errno = 0;
            const long child = ::syscall(SYS_clone, kind | bits | SIGCHLD, 0, 0, 0, 0);
            if (child == 0)
                ::_exit(0);
            if (child > 0 || errno != EPERM)
                broke(std::string("clone of a namespace: ") + name);
        }
    }
}

void attackSockets(bool engine) {
    const struct {
        const char* name;
        long family;
    } families[] = {{"vsock", AF_VSOCK}, {"packet", AF_PACKET}, {"alg", AF_ALG},
                    {"key", AF_KEY},     {"xdp", AF_XDP},       {"bluetooth", AF_BLUETOOTH}};
    for (const auto& [name, family] : families)
        for (const long bits : {0L, highBits})
            refused(name, EAFNOSUPPORT, SYS_socket, family | bits, SOCK_STREAM, 0);
    if (engine)
        refused("local sockets", EAFNOSUPPORT, SYS_socket, AF_UNIX, SOCK_STREAM, 0);
}

void attackSetIds() {
    const char* const file = "/tmp/set-id";
    const struct {
        unsigned long flags, mode, resolve;
    } how[] = {{O_CREAT | O_WRONLY, 0755 | S_ISUID, 0}, {O_CREAT | O_WRONLY, 0755 | S_ISGID, 0}};
    for (const int which : {0, 1}) {
        const auto mode = static_cast<mode_t>(how[which].mode);
        const std::pair<const char*, std::function<void(int)>> ways[] = {
            {"chmod", [&](int) { ::chmod(file, mode); }},
            {"fchmod", [&](int open) { ::fchmod(open, mode); }},
            {"fchmodat", [&](int) { ::fchmodat(AT_FDCWD, file, mode, 0); }},
            {"fchmodat2", [&](int) { ::syscall(452, AT_FDCWD, file, mode, 0); }},
            {"open", [&](int) { ::close(::open(file, O_CREAT | O_WRONLY, mode)); }},
            {"creat", [&](int) { ::close(::creat(file, mode)); }},
            {"mknod", [&](int) { ::mknod(file, S_IFREG | mode, 0); }},
            {"openat2",
             [&](int) { ::syscall(SYS_openat2, AT_FDCWD, file, &how[which], sizeof how[which]); }},
            {"a file without a name", [&](int) {
                 const int nameless = ::open("/tmp", O_TMPFILE | O_WRONLY, mode);
                 const std::string name = "/proc/self/fd/" + std::to_string(nameless);
                 ::linkat(AT_FDCWD, name.c_str(), AT_FDCWD, file, AT_SYMLINK_FOLLOW);
                 ::close(nameless);
             }}};
        for (const auto& [name, way] : ways) {
            // Those that change a file get one.
            const int open =
                std::strstr(name, "chmod") ? ::open(file, O_CREAT | O_RDONLY, 0755) : -1;
            way(open);
            ::close(open);
            struct stat status{};
            if (::stat(file, &status) == 0 && (status.st_mode & (S_ISUID | S_ISGID)) != 0)
                broke(std::string("a set-id file by ") + name);
            ::unlink(file);
        }
    }
}

void attackLimits() {
    for (const auto what : {RLIMIT_NOFILE, RLIMIT_FSIZE}) {
        struct rlimit limit{};
        ::getrlimit(what, &limit);
        if (limit.rlim_max == RLIM_INFINITY)
            broke("no limit " + std::to_string(what));
        limit.rlim_max += 1;
        if (::setrlimit(what, &limit) == 0)
            broke("a limit can be lifted: " + std::to_string(what));
    }
    std::vector<pid_t> children;
    while (children.size() < tooManyProcesses) {
        const pid_t child = ::fork();
        if (child == 0)
            while (true)
                ::pause();
        if (child < 0)
            break;
        children.push_back(child);
    }
    if (children.size() >= tooManyProcesses)
        broke("processes without number");
    for (const pid_t child : children) {
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
    }
}

void lookAround(const std::string& secret, const std::string& place, bool engine) {
    for (const std::string& process : namesIn("/proc")) {
        const std::string folder = "/proc/" + process + "/";
        const std::string words = contentsOf(folder + "cmdline");
        if (contentsOf(folder + "environ").find(secret) != std::string::npos)
            broke("the desktop's environment in " + folder + "environ");
        if (words.find("attacker") == std::string::npos && words.find(place) != std::string::npos)
            broke("the desktop's folders in " + folder + "cmdline");
        // What the engine started is one domain with this process, anything else is out of reach.
        if (engine && words.find("dubrix-app") != std::string::npos && process != "1" &&
            words.find("attacker") == std::string::npos) {
            if (::open((folder + "mem").c_str(), O_RDWR) >= 0)
                broke("the memory of process " + process);
            for (const std::string& number : namesIn(folder + "fd"))
                if (::open((folder + "fd/" + number).c_str(), O_WRONLY | O_NONBLOCK) >= 0)
                    broke("descriptor " + number + " of process " + process);
        }
    }
    for (const std::string& number : namesIn("/proc/self/fd")) {
        char target[4096] = "";
        const std::string link = "/proc/self/fd/" + number;
        if (::readlink(link.c_str(), target, sizeof target - 1) > 0 && std::stoi(number) > 2 &&
            std::strstr(target, "/proc/") == nullptr && std::strstr(target, "pipe:") == target)
            broke("descriptor " + number + " is " + target);
        if (std::strstr(target, place.c_str()) != nullptr && std::stoi(number) > 2)
            broke("descriptor " + number + " is " + target);
    }
    for (const char* folder : {"/", "/usr", "/etc", "/opt", "/sys", "/proc/sys", "/dubrix"})
        if (::access(folder, W_OK) == 0)
            broke(std::string("writing to ") + folder);
    if (::access(place.c_str(), F_OK) == 0)
        broke("sight of " + place);
    if (!contentsOf("/proc/keys").empty())
        broke("sight of the keys");
}

/// Whether a process of its own ends as one whose work says true.
template<class Work>
bool succeeds(Work work) {
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(work() ? 0 : 1);
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

/// A program of the processor's older architecture has other numbers for its calls.
void attackByOldCalls() {
#ifdef __x86_64__
    const auto older = [] {
        long result = 20; // getpid
        asm volatile("int $0x80" : "+a"(result) : : "memory", "r8", "r9", "r10", "r11");
        return result > 0;
    };
    if (succeeds(older))
        broke("calls of the older architecture");
    if (succeeds([] { return ::syscall(0x40000000L | SYS_getpid) > 0; }))
        broke("calls of the x32 kind");
#endif
}

/// Exchanges two names for as long as it lives.
[[noreturn]] void swapForEver(const char* one, const char* other) {
    while (true)
        ::renameat2(AT_FDCWD, one, AT_FDCWD, other, RENAME_EXCHANGE);
}

} // namespace

int main(int, char* words[]) {
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    if (std::string(words[1]) == "swap")
        swapForEver(words[2], words[3]);
    const bool engine = std::string(words[1]) == "engine";
    attackTerminal();
    attackKernel();
    attackNamespaces();
    attackSockets(engine);
    attackSetIds();
    attackByOldCalls();
    lookAround(words[2], words[3], engine);
    if (!engine)
        attackLimits();
    std::puts("tried everything");
    std::fflush(stdout);
    ::_exit(0);
}
