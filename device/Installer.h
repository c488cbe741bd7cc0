#pragma once

#include "device/BundleInfo.h"
#include "device/BundleStore.h"
#include "device/Registry.h"
#include "device/Result.h"

#include <filesystem>
#include <string>
#include <vector>

namespace dubrix {

/// Installs, removes, exports and lists the device's applications. The registry's link is the one
/// moment at which an application comes, changes or goes: an installer killed at any point leaves
/// the old state or the new one, and the next installation or removal sweeps what it left lying.
/// (Killed, not cut from power: nothing is flushed to the disk.) Installers that run at the same
/// time wait for one another. Every failure's text begins with the last component of the file's
/// path, or with the identifier, that it concerns.
class Installer {
public:
    /// `root` is the folder that is the device; `step` is told of each step done, `progress` of the
    /// bytes unpacked or packed by each operation.
    explicit Installer(std::filesystem::path root = "/", StepHook step = {},
                       Progress progress = {});

    /// Installs the application of an archive, in place of an installed one with the same
    /// identifier; gives what its bundle says of itself, identifier included. A refused archive
    /// changes nothing.
    Result<BundleInfo> install(const std::filesystem::path& file);

    /// Removes an installed application; not a system application.
    Outcome uninstall(const std::string& identifier);

    /// Packs an installed application into an archive, in place of an earlier file.
    Outcome exportTo(const std::string& identifier, const std::filesystem::path& file) const;

    struct Application {
        std::string identifier;
        std::string name;
        /// Empty when the bundle gives none.
        std::string version;
        /// On the device.
        std::string path;
    };
    /// All registered applications, sorted by the identifiers' bytes.
    std::vector<Application> list() const;

private:
    Result<BundleInfo> installArchive(int archive);
    Outcome place(const ArchivedBundle& bundle, const LinkTargets& links,
                  const std::string& identifier, int archive);
    Outcome uninstallApplication(const std::string& identifier);
    /// Whether the application is one of the system's, by its own word or by the registry's.
    bool belongsToSystem(const std::string& identifier) const;

    Registry registry_;
    StepHook step_;
    Progress progress_;
};

} // namespace dubrix
