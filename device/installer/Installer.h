#pragma once

#include "device/archive/Progress.h"
#include "device/registry/BundleInfo.h"
#include "device/registry/Registry.h"
#include "files/Result.h"

#include <filesystem>
#include <string>
#include <vector>

namespace dubrix {

/// Installs, removes, exports and lists the device's applications. The registry's link is the one
/// moment at which an application comes, changes or goes: an installer killed at any point leaves
/// the old state or the new one, and the next installation or removal sweeps what it left lying.
/// So does a cut of power: what is new is on the disk before the link changes, and the change is
/// before anything is removed or success is told. Installers that run at the same time wait for one
/// another. Every failure's text begins with the last component of the file's path, or with the
/// identifier, that it concerns.
class Installer {
public:
    /// `root` is the folder that is the device; `progress` is told of the bytes unpacked or packed
    /// by each operation. `waiting` is called by another thread, once an operation, when another
    /// installer lets this one wait (see BundleStore::open).
    explicit Installer(const std::filesystem::path& root = "/", Progress progress = {},
                       std::function<void()> waiting = {});

    struct Installed {
        /// What the bundle says of itself, identifier included.
        BundleInfo info;
        /// The version in whose place it is, empty where that gave none; nothing without one.
        std::optional<std::string> earlier{};
    };
    /// Installs the application of an archive, in place of an installed one with the same
    /// identifier. A refused archive changes nothing.
    Result<Installed> install(const std::filesystem::path& file);

    enum class Removal { Final, Undoable };
    struct Removed {
        /// Whether it can be put back.
        bool isKept = false;
    };
    /// Removes an installed application; not a system application. One whose removal is undoable
    /// stays aside as long as nothing else is removed, nobody forgets it and its room is not
    /// needed, and is no installed application meanwhile.
    Result<Removed> uninstall(const std::string& identifier, Removal removal = Removal::Final);
    /// Undoes the last removal, if that was the application's; not when another of its identifier
    /// has been installed meanwhile.
    Outcome putBack(const std::string& identifier);
    /// Gives up what could be put back.
    Outcome forgetRemoved();

    /// Packs an installed application into an archive, in place of an earlier file: the old file or
    /// the new one is there, whole, and after a success on the disk. One that is replaced meanwhile
    /// is packed as it is then.
    Outcome exportTo(const std::string& identifier, const std::filesystem::path& file) const;
    /// The same into the open file `archive`, which must be an empty regular file that can be
    /// written, and is empty after a failure. `file` is what messages call it.
    Outcome exportTo(const std::string& identifier, const std::filesystem::path& file,
                     int archive) const;

    struct Application {
        std::string identifier;
        std::string name;
        /// Empty when the bundle gives none.
        std::string version;
        /// On the device.
        std::string path;
    };
    /// All installed applications, sorted by the identifiers' bytes; fails when the registry cannot
    /// be read.
    Result<std::vector<Application>> list() const;

private:
    /// What is to be installed, as it was found in an archive.
    struct Package;

    Result<Installed> installArchive(int archive);
    Outcome place(const Package& package, Installed& installed);
    Result<Removed> uninstallApplication(const std::string& identifier, Removal removal);
    Outcome pack(const std::string& identifier, const std::string& fileName, int archive) const;
    /// Whether the application is one of the system's, by its own word or by the registry's.
    bool belongsToSystem(const std::string& identifier) const;

    Registry registry_;
    Progress progress_;
    std::function<void()> waiting_;
};

} // namespace dubrix
