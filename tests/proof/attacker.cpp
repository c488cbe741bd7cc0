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
#include <linux/netlink.h>
#include <linux/sched.h>
#include <sched.h>
#include <string>
#include <sys/ioctl.h>
#include <sys/prctl.h>
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
void refused(int error, long call, Arguments... arguments) {
    errno = 0;
    const bool done = ::syscall(call, arguments...) >= 0;
    if (done || errno != error)
        broke("call " + std::to_string(call) +
              ((" " + std::to_string(arguments)) + ... + (done ? "" : " fails by itself only")));
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
    char byte = '\n';
    for (const long request : {long{TIOCSTI}, 0x541cL /* TIOCLINUX */})
        for (const long bits : {0L, highBits})
            refused(EPERM, SYS_ioctl, 0, request | bits, reinterpret_cast<long>(&byte));
    if (::open("/dev/tty", O_RDWR) >= 0)
        broke("a controlling terminal");
    for (const int stream : {0, 1, 2})
        if (::isatty(stream) == 1)
            broke("a terminal as standard stream");
    if (::read(0, &byte, 1) != 0)
        broke("somebody's input");
    if (::write(0, &byte, 1) > 0)
        broke("writing to the standard input");
}

void attackKernel() {
    for (const long call :
         {SYS_keyctl, SYS_add_key, SYS_request_key, SYS_ptrace, SYS_process_vm_readv,
          SYS_perf_event_open, SYS_bpf, SYS_userfaultfd, SYS_mount, SYS_umount2, SYS_pivot_root,
          SYS_chroot, SYS_setns, SYS_personality})
        refused(EPERM, call, 1, 0, 0, 0, 0, 0);
    constexpr long ofTomorrow = 500;
    for (const long call : {long{SYS_open_tree}, long{SYS_fsopen}, long{SYS_io_uring_setup},
                            long{SYS_openat2}, long{SYS_clone3}, ofTomorrow})
        refused(ENOSYS, call, 0, 0, 0, 0, 0, 0);
}

void attackNamespaces() {
    for (const long kind : {CLONE_NEWUSER, CLONE_NEWNS, CLONE_NEWPID, CLONE_NEWNET, CLONE_NEWUTS,
                            CLONE_NEWIPC, CLONE_NEWCGROUP, CLONE_NEWTIME}) {
        refused(EPERM, SYS_unshare, kind);
        if (kind == CLONE_NEWTIME)
            continue; // not to be had by clone
        for (const long bits : {0L, highBits}) {
            const long child = ::syscall(SYS_clone, kind | bits | SIGCHLD, 0, 0, 0, 0);
            if (child == 0)
                ::_exit(0);
            if (child > 0 || errno != EPERM)
                broke("clone of a namespace: " + std::to_string(kind));
        }
    }
}

void attackSockets(bool engine) {
    for (const long family : {AF_VSOCK, AF_PACKET, AF_ALG, AF_KEY, AF_XDP, AF_BLUETOOTH})
        for (const long bits : {0L, highBits})
            refused(EAFNOSUPPORT, SYS_socket, family | bits, SOCK_STREAM, 0);
    for (const int protocol : {NETLINK_UNUSED, NETLINK_AUDIT, NETLINK_KOBJECT_UEVENT})
        refused(EAFNOSUPPORT, SYS_socket, AF_NETLINK, SOCK_RAW, protocol);
    for (const int type : {SOCK_STREAM, SOCK_DGRAM})
        if (engine)
            refused(EAFNOSUPPORT, SYS_socket, AF_UNIX, type, 0);
}

void attackSetIds() {
    const char* const file = "/tmp/set-id";
    for (const mode_t mode : {0755U | S_ISUID, 0755U | S_ISGID}) {
        const unsigned long how[] = {O_CREAT | O_WRONLY, mode, 0}; // of openat2
        const std::pair<const char*, std::function<void(int)>> ways[] = {
            {"chmod", [&](int) { ::chmod(file, mode); }},
            {"fchmod", [&](int open) { ::fchmod(open, mode); }},
            {"fchmodat", [&](int) { ::fchmodat(AT_FDCWD, file, mode, 0); }},
            {"fchmodat2", [&](int) { ::syscall(452, AT_FDCWD, file, mode, 0); }},
            {"open", [&](int) { ::close(::open(file, O_CREAT | O_WRONLY, mode)); }},
            {"creat", [&](int) { ::close(::creat(file, mode)); }},
            {"mknod", [&](int) { ::mknod(file, S_IFREG | mode, 0); }},
            {"openat2", [&](int) { ::syscall(SYS_openat2, AT_FDCWD, file, how, sizeof how); }},
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
    unsigned children = 0;
    for (; children < tooManyProcesses; ++children) {
        const pid_t child = ::fork();
        if (child == 0 && ::prctl(PR_SET_PDEATHSIG, SIGKILL) == 0)
            while (true)
                ::pause();
        if (child < 0)
            return;
    }
    broke("processes without number");
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
        std::error_code error;
        const std::string target =
            std::filesystem::read_symlink("/proc/self/fd/" + number, error).native();
        if (std::stoi(number) > 2 &&
            (target.starts_with("pipe:") || target.find(place) != std::string::npos))
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

} // namespace

int main(int, char* words[]) {
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    while (std::string(words[1]) == "swap")
        ::renameat2(AT_FDCWD, words[2], AT_FDCWD, words[3], RENAME_EXCHANGE);
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
    ::_exit(0);
}
