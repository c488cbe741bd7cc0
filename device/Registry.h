#pragma once

#include "device/BundleInfo.h"
#include "device/Result.h"

#include <filesystem>
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

    explicit Registry(const std::filesystem::path& root = "/");

    /// Whether `identifier` can name an application: 1 to 255 bytes without '/' and control
    /// characters, and neither "." nor "..".
    static bool isUsableIdentifier(std::string_view identifier);

    /// Whether the application is registered and its bundle folder is there. Letter case counts;
    /// an unknown or unusable identifier gives false.
    bool isInstalled(const std::string& identifier) const;
    /// The bundle folder of an installed application, without trailing slash; nothing when it is
    /// not installed.
    std::optional<std::string> pathOf(const std::string& identifier) const;
    /// What the bundle of an installed application says of itself.
    std::optional<BundleInfo> infoOf(const std::string& identifier) const;
    /// The names of all links, whether or not a bundle is there, sorted by bytes.
    std::vector<std::string> names() const;
    /// All installed applications, sorted by bytes.
    std::vector<std::string> identifiers() const;

    /// The bundle folders of all system applications, registered or not, sorted.
    std::vector<std::string> systemBundles() const;
    /// Whether a system application has this identifier. Reads the Info.plist of each of them.
    bool isSystemApplication(const std::string& identifier) const;

    /// Where the link of `identifier` leads, whether or not a bundle is there; nothing without a
    /// link.
    std::optional<std::string> targetOf(const std::string& identifier) const;
    /// Registers the bundle at `devicePath`, in place of an earlier one, at one stroke: a reader
    /// sees the old bundle or the new one. The caller holds the BundleStore's lock when installers
    /// may be running.
    Outcome enter(const std::string& identifier, std::string_view devicePath) const;
    /// Takes the registration away, at one stroke.
    Outcome strike(const std::string& identifier) const;

    /// Where something of the device lies on this machine.
    std::filesystem::path hostPath(std::string_view devicePath) const {
        return hostPathText(devicePath);
    }
    /// The same for system calls.
    std::string hostPathText(std::string_view devicePath) const;

    /// For system calls on many bundles: the path below the open folder `applicationPath`, or an
    /// absolute one on this machine for what does not lie there.
    std::string pathBelowApplications(std::string_view devicePath) const;

    /// Beginning of the names of links not yet in place, in the bundle folder.
    static constexpr std::string_view temporaryLinkPrefix = ".link-";

private:
    std::string linkOf(const std::string& identifier) const;

    /// Without slashes at its end.
    std::string root_;
};

} // namespace dubrix
