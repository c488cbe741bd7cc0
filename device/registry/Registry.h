#pragma once

#include "device/registry/BundleInfo.h"
#include "files/Descriptor.h"
#include "files/Result.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace dubrix {

/// The device's record of its installed applications: one symbolic link for each, named after the
/// bundle identifier and leading to the bundle folder. A query looks at one link, so its cost does
/// not grow with the number of applications; answers are current and nothing is kept, so any
/// thread may ask.
///
/// Paths that go in and out are the device's own ("/var/containers/…"), whatever root they lie
/// below here.
class Registry {
public:
    /// Where the device's bundles and links lie.
    static constexpr std::string_view bundlePath = "/var/containers/Bundle";
    static constexpr std::string_view applicationPath = "/var/containers/Bundle/Application";
    static constexpr std::string_view registryPath = "/var/containers/Bundle/Registry";
    static constexpr std::string_view systemPath = "/Applications";
    /// Where the link of an application lies that was removed and may be put back.
    static constexpr std::string_view removedPath = "/var/containers/Bundle/Removed";

    explicit Registry(const std::filesystem::path& root = "/");
    /// The record of the same form of what can be put back.
    Registry removed() const;

    /// Whether `identifier` may name an application that is to be installed: 1 to 255 bytes, none
    /// of them '/', that are neither "." nor ".." nor begin like an option, and without what
    /// `actsOnLine`.
    static bool isUsableIdentifier(std::string_view identifier);
    /// Whether it may name one that is there already, and be looked up and struck: the same,
    /// however it begins, and without ASCII control characters only.
    static bool mayBeRegistered(std::string_view identifier);
    /// Whether `devicePath` is where bundles lie: applicationPath/FOLDER/NAME.app or
    /// systemPath/NAME.app, where FOLDER is not hidden. Nothing else is ever taken for an installed
    /// application, wherever a link leads.
    static bool isBundlePath(std::string_view devicePath);

    /// Whether the application is registered and its bundle folder is there. Letter case counts;
    /// an unknown or unusable identifier gives false.
    bool isInstalled(const std::string& identifier) const;
    /// The bundle folder of an installed application, without trailing slash; nothing when it is
    /// not installed. One that is being replaced is never missed.
    std::optional<std::string> pathOf(const std::string& identifier) const;
    /// What the bundle of an installed application says of itself.
    std::optional<BundleInfo> infoOf(const std::string& identifier) const;
    /// Both at one moment; `info` is nothing for a bundle that says nothing of itself.
    struct Bundle {
        std::string path;
        std::optional<BundleInfo> info;
    };
    std::optional<Bundle> bundleOf(const std::string& identifier) const;
    /// The names of all links, whether or not a bundle is there, sorted by bytes. None where there
    /// is no registry yet; a failure when it cannot be read.
    Result<std::vector<std::string>> names() const;
    /// All installed applications, sorted by bytes; none when the registry cannot be read.
    std::vector<std::string> identifiers() const;

    /// The bundle folders of all system applications, registered or not, sorted.
    std::vector<std::string> systemBundles() const;
    /// Whether a system application has this identifier. Reads the Info.plist of each of them.
    bool isSystemApplication(const std::string& identifier) const;

    /// Whether there is a link of that name, wherever it leads.
    bool isRegistered(const std::string& identifier) const;
    /// Where the link of `identifier` leads, whether or not a bundle is there; nothing without a
    /// link to where bundles lie.
    std::optional<std::string> targetOf(const std::string& identifier) const;
    /// Registers the bundle at `devicePath`, in place of an earlier one, at one stroke: a reader
    /// sees the old bundle or the new one. `beforeChange` is called when the new link is made and
    /// not yet in place; its failure leaves the registry as it is. Installers go through the
    /// BundleStore, which has the lock and knows what must be on the disk when.
    Outcome enter(const std::string& identifier, std::string_view devicePath,
                  const std::function<Outcome()>& beforeChange = {}) const;
    /// The same where nothing is registered under that name; fails where something is.
    Outcome enterNew(const std::string& identifier, std::string_view devicePath) const;
    /// Takes the registration away, at one stroke.
    Outcome strike(const std::string& identifier) const;
    /// Returns when the links are on the disk as they are.
    Outcome flush() const;

    /// The open folder at `devicePath`, on the way to which no link is followed below the device's
    /// root; none, with errno, when that is not possible.
    Descriptor openFolder(std::string_view devicePath) const;

    /// Where something of the device lies on this machine.
    std::filesystem::path hostPath(std::string_view devicePath) const {
        return hostPathText(devicePath);
    }
    /// The same for system calls.
    std::string hostPathText(std::string_view devicePath) const;

    /// So often a bundle that is asked for may be replaced while it is looked at. Who makes more of
    /// it wants to keep us busy.
    static constexpr int mostReplacements = 100;

    /// Beginning of the names of links not yet in place, in the bundle folder.
    static constexpr std::string_view temporaryLinkPrefix = ".link-";

private:
    bool isBundleThere(const std::string& devicePath) const;
    std::string linkOf(const std::string& identifier) const;

    /// Without slashes at its end.
    std::string root_;
    std::string_view links_ = registryPath;
};

} // namespace dubrix
