#include "platform/posix/linux/SystemCallConfinement.h"

#include "files/WholeFile.h"

#include <cstdint>
#include <fcntl.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace dubrix {

namespace {

constexpr std::uintmax_t largestFilter = BPF_MAXINSNS * sizeof(sock_filter);

/// The kernel's struct as of the sixth version of the interface; older kernels take its beginning.
struct LandlockRules {
    std::uint64_t files;
    std::uint64_t network;
    std::uint64_t scopes;
};

struct [[gnu::packed]] LandlockPathRule {
    std::uint64_t allowed;
    std::int32_t folder;
};

// The interface's numbers are the same on every architecture.
constexpr long landlockCreateRuleset = 444;
constexpr long landlockAddRule = 445;
constexpr long landlockRestrictSelf = 446;
constexpr int versionAsked = 1;
constexpr int pathRule = 1;
constexpr long firstVersionWithRenaming = 2;
constexpr long firstVersionWithScopes = 6;
constexpr std::uint64_t renamingAcrossFolders = 1U << 13;
constexpr std::uint64_t abstractSocketsAndSignals = 3;

/// Being in a domain of its own keeps a process from tracing those outside, /proc/PID/mem included.
/// The rules themselves take nothing: a domain loses the right to rename across folders unless it
/// is given back, which the first version of the interface could not.
void enterDomain() {
    const long version = ::syscall(landlockCreateRuleset, nullptr, 0, versionAsked);
    if (version < firstVersionWithRenaming)
        return;
    const bool scopes = version >= firstVersionWithScopes;
    const LandlockRules rules{renamingAcrossFolders, 0, scopes ? abstractSocketsAndSignals : 0};
    const long ruleset =
        ::syscall(landlockCreateRuleset, &rules, scopes ? sizeof rules : sizeof rules.files, 0);
    const int everything = ::open("/", O_PATH | O_CLOEXEC);
    const LandlockPathRule given{renamingAcrossFolders, everything};
    if (::syscall(landlockAddRule, ruleset, pathRule, &given, 0) == 0)
        ::syscall(landlockRestrictSelf, ruleset, 0);
    ::close(everything);
    ::close(static_cast<int>(ruleset));
}

} // namespace

std::unique_ptr<SystemCallConfinement>
SystemCallConfinement::read(const std::filesystem::path& file) {
    std::optional<std::string> bytes = readWholeFile(file, largestFilter);
    if (!bytes || bytes->empty() || bytes->size() % sizeof(sock_filter) != 0)
        return nullptr;
    return std::unique_ptr<SystemCallConfinement>(new SystemCallConfinement(std::move(*bytes)));
}

bool SystemCallConfinement::enter() const {
    if (::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0)
        return false;
    enterDomain();
    sock_fprog program{};
    program.len = static_cast<unsigned short>(filter_.size() / sizeof(sock_filter));
    program.filter = reinterpret_cast<sock_filter*>(const_cast<char*>(filter_.data()));
    return ::syscall(SYS_seccomp, SECCOMP_SET_MODE_FILTER, 0, &program) == 0;
}

} // namespace dubrix
