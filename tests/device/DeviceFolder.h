#pragma once

#include "device/installer/Installer.h"
#include "tests/device/archive/ZipBuilder.h"
#include "tests/support/TemporaryFolder.h"

#include <map>
#include <sys/wait.h>
#include <unistd.h>

namespace dubrix {

/// Of an application, binary.
std::string infoPlist(const std::string& identifier, const std::string& version = "1");

/// Permissions and content by path; of a link, where it leads.
using Contents = std::map<std::string, std::string>;

/// Everything below a folder, by paths in it; empty where there is none.
Contents contentsBelow(const std::filesystem::path& folder);

/// A place for temporary folders in memory, where nothing waits for the disk and whoever else
/// writes there; the usual one where there is none for programs, too.
std::filesystem::path placeInMemory();

/// A device with one system application, in a folder of its own, and archives beside it.
class DeviceFolder {
public:
    DeviceFolder() {
        putFile(root() / "Applications/Settings.app/Info.plist", infoPlist("com.example.settings"));
    }

    std::filesystem::path root() const { return folder_ / "device"; }
    Installer installer() const { return Installer(root()); }
    Registry registry() const { return Registry(root()); }

    std::filesystem::path archive(const std::string& name, const std::string& bytes) const {
        putFile(folder_ / name, bytes);
        return folder_ / name;
    }
    /// An archive of Payload/X.app with an Info.plist and these files, named below the bundle.
    std::filesystem::path application(const std::string& identifier, const std::string& version,
                                      std::vector<ZipItem> items = {}) const {
        for (ZipItem& item : items)
            item.name.insert(0, "Payload/X.app/");
        items.push_back({"Payload/X.app/Info.plist", infoPlist(identifier, version)});
        return archive(identifier + "-" + version + ".ipa", zipOf(items));
    }
    /// Where an installed application's bundle, or a file in it, lies on this machine.
    std::filesystem::path installed(const std::string& identifier,
                                    const std::string& name = "") const {
        const auto bundle = registry().hostPath(registry().pathOf(identifier).value_or("/none"));
        return name.empty() ? bundle : bundle / name;
    }
    std::string versionOf(const std::string& identifier) const {
        const auto info = registry().infoOf(identifier);
        return info ? info->version.value_or("none") : "not installed";
    }

    Contents snapshot() const { return contentsBelow(root()); }

    /// What lies among the installed bundles beyond one folder for each registered application, and
    /// for one that can be put back.
    long leftovers() const;

    const TemporaryFolder& folder() const { return folder_; }

private:
    TemporaryFolder folder_{placeInMemory()};
};

/// Runs `work` in a process of its own and gives its wait status: exit code 0 when it says true.
template<class Work>
int inChild(Work work) {
    const pid_t child = ::fork();
    if (child == 0)
        ::_exit(work() ? 0 : 1);
    int status = -1;
    ::waitpid(child, &status, 0);
    return status;
}

} // namespace dubrix
