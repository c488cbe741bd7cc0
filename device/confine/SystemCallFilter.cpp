#include "device/confine/SystemCallFilter.h"

#include <cerrno>
#include <fcntl.h>
#include <initializer_list>
#include <linux/sched.h>
#include <memory>
#include <seccomp.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include "files/Descriptor.h"

namespace dubrix {

namespace {

/// The last call that this list takes into account, and up to where younger ones are unknown.
constexpr int lastKnownCall = 456;
constexpr int unknownCalls = 512;
/// Calls since 2018 have one number on every architecture; not all have a name in the library.
constexpr int fchmodat2 = 452;
constexpr int mseal = 462;

constexpr scmp_datum_t low = 0xffffffff;

#ifdef __s390__
constexpr unsigned cloneFlags = 1;
#else
constexpr unsigned cloneFlags = 0;
#endif

scmp_arg_cmp has(unsigned argument, scmp_datum_t bit) {
    return {argument, SCMP_CMP_MASKED_EQ, bit, bit};
}

scmp_arg_cmp isLow(unsigned argument, scmp_datum_t value) {
    return {argument, SCMP_CMP_MASKED_EQ, low, value & low};
}

/// Collects rules; remembers whether any was not taken.
class Filter {
public:
    Filter() : context_(seccomp_init(SCMP_ACT_ALLOW), seccomp_release) {
        attribute(SCMP_FLTATR_ACT_BADARCH, SCMP_ACT_KILL_PROCESS);
        attribute(SCMP_FLTATR_CTL_OPTIMIZE, 2);
    }

    void attribute(scmp_filter_attr name, std::uint32_t value) {
        whole_ = whole_ && context_ && seccomp_attr_set(context_.get(), name, value) == 0;
    }

    void refuse(int error, int call, std::initializer_list<scmp_arg_cmp> when = {}) {
        // Calls of other architectures have negative numbers here.
        if (call < 0 || !whole_)
            return;
        whole_ =
            seccomp_rule_add_array(context_.get(), SCMP_ACT_ERRNO(static_cast<unsigned>(error)),
                                   call, static_cast<unsigned>(when.size()), when.begin()) == 0;
    }

    void refuse(int error, std::initializer_list<int> calls) {
        for (const int call : calls)
            refuse(error, call);
    }

    Result<std::string> exported() const {
        if (!whole_)
            return Failure{"the system-call filter cannot be made"};
        const Descriptor file(::memfd_create("filter", MFD_CLOEXEC));
        if (!file.isOpen() || seccomp_export_bpf(context_.get(), file.get()) != 0)
            return Failure{"the system-call filter cannot be written"};
        std::string program(static_cast<std::size_t>(::lseek(file.get(), 0, SEEK_END)), '\0');
        if (::pread(file.get(), program.data(), program.size(), 0) !=
            static_cast<ssize_t>(program.size()))
            return systemFailure("the system-call filter cannot be read");
        return program;
    }

private:
    std::unique_ptr<void, void (*)(scmp_filter_ctx)> context_;
    bool whole_ = true;
};

void refuseAdministration(Filter& filter) {
    filter.refuse(EPERM, {SCMP_SYS(syslog),
                          SCMP_SYS(uselib),
                          SCMP_SYS(acct),
                          SCMP_SYS(quotactl),
                          SCMP_SYS(quotactl_fd),
                          SCMP_SYS(kexec_load),
                          SCMP_SYS(init_module),
                          SCMP_SYS(kexec_file_load),
                          SCMP_SYS(finit_module),
                          SCMP_SYS(delete_module),
                          SCMP_SYS(iopl),
                          SCMP_SYS(ioperm),
                          SCMP_SYS(modify_ldt),
                          SCMP_SYS(swapon),
                          SCMP_SYS(swapoff),
                          SCMP_SYS(reboot),
                          SCMP_SYS(settimeofday),
                          SCMP_SYS(clock_settime),
                          SCMP_SYS(clock_adjtime),
                          SCMP_SYS(adjtimex),
                          SCMP_SYS(sethostname),
                          SCMP_SYS(setdomainname),
                          SCMP_SYS(vhangup),
                          SCMP_SYS(lookup_dcookie),
                          SCMP_SYS(nfsservctl),
                          SCMP_SYS(fanotify_init),
                          SCMP_SYS(open_by_handle_at),
                          SCMP_SYS(bpf),
                          SCMP_SYS(userfaultfd),
                          SCMP_SYS(move_pages),
                          SCMP_SYS(mbind),
                          SCMP_SYS(migrate_pages),
                          SCMP_SYS(set_mempolicy),
                          SCMP_SYS(get_mempolicy),
                          SCMP_SYS(set_mempolicy_home_node)});
    // Only the usual personality: others change where a program lies in memory.
    filter.refuse(EPERM, SCMP_SYS(personality), {{0, SCMP_CMP_NE, 0, 0}});
}

void refuseOtherProcesses(Filter& filter) {
    filter.refuse(EPERM, {SCMP_SYS(ptrace), SCMP_SYS(process_vm_readv), SCMP_SYS(process_vm_writev),
                          SCMP_SYS(process_madvise), SCMP_SYS(kcmp), SCMP_SYS(pidfd_getfd),
                          SCMP_SYS(perf_event_open), SCMP_SYS(add_key), SCMP_SYS(keyctl),
                          SCMP_SYS(request_key)});
    // Bytes typed for others to read, and the console's own selection.
    for (const unsigned long request :
         {static_cast<unsigned long>(TIOCSTI), 0x541cUL /* TIOCLINUX */})
        filter.refuse(EPERM, SCMP_SYS(ioctl), {isLow(1, request)});
}

void refuseMounts(Filter& filter) {
    filter.refuse(EPERM, {SCMP_SYS(mount), SCMP_SYS(umount), SCMP_SYS(umount2),
                          SCMP_SYS(pivot_root), SCMP_SYS(setns)});
    filter.refuse(ENOSYS,
                  {SCMP_SYS(open_tree), SCMP_SYS(move_mount), SCMP_SYS(fsopen), SCMP_SYS(fsconfig),
                   SCMP_SYS(fsmount), SCMP_SYS(fspick), SCMP_SYS(mount_setattr)});
}

void refuseNamespaces(Filter& filter, Confined whom) {
    filter.refuse(ENOSYS, SCMP_SYS(clone3));
    for (const scmp_datum_t kind : {CLONE_NEWNS, CLONE_NEWCGROUP, CLONE_NEWUTS, CLONE_NEWIPC}) {
        filter.refuse(EPERM, SCMP_SYS(clone), {has(cloneFlags, kind)});
        if (whom == Confined::WebPages)
            filter.refuse(EPERM, SCMP_SYS(unshare), {has(0, kind)});
    }
    if (whom == Confined::WebPages) {
        filter.refuse(EPERM, SCMP_SYS(unshare), {has(0, CLONE_NEWTIME)});
        return;
    }
    for (const scmp_datum_t kind : {CLONE_NEWUSER, CLONE_NEWPID, CLONE_NEWNET})
        filter.refuse(EPERM, SCMP_SYS(clone), {has(cloneFlags, kind)});
    filter.refuse(EPERM, {SCMP_SYS(unshare), SCMP_SYS(chroot)});
}

void refuseOddSockets(Filter& filter, Confined whom) {
    for (const int call : {SCMP_SYS(socket), SCMP_SYS(socketpair)}) {
        for (int family = 0; family < AF_NETLINK; ++family)
            if (family != AF_UNIX && family != AF_INET && family != AF_INET6)
                filter.refuse(EAFNOSUPPORT, call, {isLow(0, static_cast<scmp_datum_t>(family))});
        // Also whatever has bits in the half that the kernel ignores.
        filter.refuse(EAFNOSUPPORT, call, {{0, SCMP_CMP_GT, AF_NETLINK, 0}});
    }
    if (whom == Confined::EngineCommand)
        filter.refuse(EAFNOSUPPORT, SCMP_SYS(socket), {isLow(0, AF_UNIX)});
    // Of netlink, a command needs the routes at the most.
    if (whom != Confined::WebPages)
        filter.refuse(EAFNOSUPPORT, SCMP_SYS(socket),
                      {isLow(0, AF_NETLINK), {2, SCMP_CMP_NE, 0, 0}});
}

/// A program that serves whoever starts it with its owner's rights would outlive the containment.
void refuseSetIds(Filter& filter) {
    struct {
        int call;
        unsigned mode;
    } const callsWithMode[] = {
        {SCMP_SYS(chmod), 1}, {SCMP_SYS(fchmod), 1}, {SCMP_SYS(fchmodat), 2}, {fchmodat2, 2},
        {SCMP_SYS(creat), 1}, {SCMP_SYS(mknod), 1},  {SCMP_SYS(mknodat), 2}};
    for (const scmp_datum_t bit : {S_ISUID, S_ISGID}) {
        for (const auto& [call, mode] : callsWithMode)
            filter.refuse(EPERM, call, {has(mode, bit)});
        for (const scmp_datum_t creating : {O_CREAT, O_TMPFILE & ~O_DIRECTORY}) {
            filter.refuse(EPERM, SCMP_SYS(open), {has(1, creating), has(2, bit)});
            filter.refuse(EPERM, SCMP_SYS(openat), {has(2, creating), has(3, bit)});
        }
    }
    filter.refuse(ENOSYS, SCMP_SYS(openat2));
}

} // namespace

Result<std::string> systemCallFilter(Confined whom) {
    Filter filter;
    refuseAdministration(filter);
    refuseOtherProcesses(filter);
    refuseMounts(filter);
    refuseNamespaces(filter, whom);
    refuseOddSockets(filter, whom);
    refuseSetIds(filter);
    // Rings of requests are carried out past every filter.
    filter.refuse(
        ENOSYS, {SCMP_SYS(io_uring_setup), SCMP_SYS(io_uring_enter), SCMP_SYS(io_uring_register)});
    for (int call = lastKnownCall + 1; call < unknownCalls; ++call)
        if (call != mseal)
            filter.refuse(ENOSYS, call);
    return filter.exported();
}

} // namespace dubrix
