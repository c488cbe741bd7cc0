#pragma once

#include <filesystem>
#include <fstream>
#include <sched.h>
#include <string>
#include <sys/mount.h>
#include <unistd.h>
#include <vector>

namespace dubrix {

/// Mounts that only this process and its children see, undone at the end. Never tried in a process
/// with threads.
class PrivateMounts {
public:
    /// Whether the system lets this process mount.
    static bool permitted() {
        static const bool entered = enter();
        return entered;
    }

    ~PrivateMounts() {
        while (!places_.empty())
            undo();
    }

    /// An empty file system of at most `bytes` on the folder.
    bool small(const std::filesystem::path& folder, std::size_t bytes) {
        const std::string options = "size=" + std::to_string(bytes) + ",mode=755";
        return note(folder, ::mount("none", folder.c_str(), "tmpfs", 0, options.c_str()));
    }

    /// The folder as it is, but nobody may write, root neither.
    bool readOnly(const std::filesystem::path& folder) {
        constexpr unsigned long again = MS_REMOUNT | MS_BIND | MS_RDONLY | MS_NOSUID | MS_NODEV;
        return note(folder, ::mount(folder.c_str(), folder.c_str(), nullptr, MS_BIND, nullptr)) &&
               ::mount(nullptr, folder.c_str(), nullptr, again, nullptr) == 0;
    }

    /// Takes the last mount away.
    void undo() {
        ::umount2(places_.back().c_str(), MNT_DETACH);
        places_.pop_back();
    }

private:
    static bool enter() {
        const uid_t user = ::geteuid();
        const gid_t group = ::getegid();
        if (::unshare(user == 0 ? CLONE_NEWNS : CLONE_NEWNS | CLONE_NEWUSER) != 0)
            return false;
        if (user != 0) {
            std::ofstream("/proc/self/setgroups") << "deny";
            std::ofstream("/proc/self/uid_map") << user << ' ' << user << " 1";
            std::ofstream("/proc/self/gid_map") << group << ' ' << group << " 1";
        }
        if (::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
            return false;
        const auto probe = std::filesystem::temp_directory_path();
        const bool mounted = ::mount("none", probe.c_str(), "tmpfs", 0, "size=4096") == 0;
        if (mounted)
            ::umount2(probe.c_str(), MNT_DETACH);
        return mounted;
    }

    bool note(const std::filesystem::path& folder, int result) {
        if (result == 0)
            places_.push_back(folder);
        return result == 0;
    }

    std::vector<std::filesystem::path> places_;
};

} // namespace dubrix
