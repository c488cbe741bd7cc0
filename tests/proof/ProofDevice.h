#pragma once

#include "engine/DXShared.h"
#include "tests/device/DeviceFolder.h"
#include "tests/proof/ProcessGroup.h"

#include <sched.h>
#include <sys/mount.h>

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

struct Ended {
    /// As a shell would give it: 128 and the signal's number for a process that was killed.
    int status = -1;
    /// The last line of what people are told.
    std::string said{};
};

/// A device with one application chosen to be duplicated in colour, and the programs that work on
/// it: real processes in groups of their own, of which none is left when `run` returns.
class ProofDevice : public DeviceFolder {
public:
    using DeviceFolder::application;
    ProofDevice();

    void installSource(const std::string& version) const {
        const auto result = installer().install(sourceArchive(version));
        ASSERT_TRUE(result) << result.failure().text;
    }
    std::filesystem::path sourceArchive(const std::string& version) const;

    /// What an installed application's bundle holds, by paths in it; empty when not installed.
    Contents bundle(const std::string& identifier) const {
        return contentsBelow(installed(identifier));
    }
    std::filesystem::path settingsPath() const { return root() / (settingsFilePath + 1); }
    std::filesystem::path staging() const { return root() / "tmp"; }

    /// A folder in which commands are looked for first.
    std::filesystem::path tools() const { return folder() / "tools"; }
    void putTool(const std::string& name, const std::string& script) const {
        putFile(tools() / name, "#!/bin/sh\n" + script);
        std::filesystem::permissions(tools() / name, std::filesystem::perms(0755));
    }
    /// Where programs look for commands.
    std::string searchPath() const { return tools().native() + ":" PROGRAMS ":/usr/bin:/bin"; }

    /// The application without a window, which is asked for a duplicate, or to store a text among
    /// the settings.
    std::vector<std::string> application(std::vector<std::string> words) const {
        words.insert(words.begin(), {PROGRAMS "/dubrix-terminal", "--root", root()});
        return words;
    }
    std::vector<std::string> duplicating() const { return application({"duplicate", "-y"}); }
    std::vector<std::string> storing(const std::string& text) const {
        return application({"settings", "name", text});
    }
    /// What the one who asks for a duplicate is told.
    std::string request() const { return run(duplicating()).said; }

    Ended run(const std::vector<std::string>& words) const { return runTogether({words}).front(); }
    /// Several programs at once.
    std::vector<Ended> runTogether(const std::vector<std::vector<std::string>>& programs) const;

    const std::string source = "com.example.app";
    const std::string duplicate = "com.example.app1";
    const std::string success = "Fine App successfully duplicated.";
    const std::string failure = "Failed to duplicate Fine App.";
};

} // namespace dubrix
