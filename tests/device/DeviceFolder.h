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

    /// Everything on the device: path to permissions and content.
    std::map<std::string, std::string> snapshot() const {
        std::map<std::string, std::string> everything;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(root())) {
            struct stat status{};
            ::lstat(entry.path().c_str(), &status);
            std::string& content = everything[entry.path().native()];
            content = std::to_string(status.st_mode) + " ";
            if (entry.is_symlink())
                content += std::filesystem::read_symlink(entry.path()).native();
            else if (entry.is_regular_file())
                content += contentsOf(entry.path());
        }
        return everything;
    }

    /// What lies among the installed bundles beyond one folder for each registered application, and
    /// for one that can be put back.
    long leftovers() const {
        const auto bundles = root() / "var/containers/Bundle";
        const auto count = [](const std::filesystem::path& path) {
            return std::distance(std::filesystem::directory_iterator(path), {});
        };
        const long kept = exists(bundles / "Removed") ? count(bundles / "Removed") : -1;
        return count(bundles) - 3 + count(bundles / "Application") - kept -
               static_cast<long>(registry().identifiers().size());
    }

    const TemporaryFolder& folder() const { return folder_; }

private:
    TemporaryFolder folder_;
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
