#pragma once

#include "device/BundleInfoCache.h"
#include "device/RegisteredBundles.h"
#include "device/Registry.h"
#include "device/RegistryLinks.h"

#include <mutex>
#include <string>
#include <vector>

namespace dubrix {

struct InstalledApplication {
    std::string identifier;
    std::string name;
    /// The bundle folder on the device.
    std::string path;
    bool isSystemApplication = false;
    bool isHidden = false;
};

/// All applications of a device with what their bundles say of themselves. Only those Info.plist
/// files are read that have changed since the list was last asked for. Any thread.
class InstalledApplications {
public:
    explicit InstalledApplications(const std::filesystem::path& root)
        : registry_(root),
          links_(registry_),
          registered_(registry_) {}

    /// The registered applications sorted by the identifiers' bytes, then the system's. Bundles
    /// that say nothing of themselves are left out.
    std::vector<InstalledApplication> all() const;

    /// The bundle folder of one, and what its bundle says; nothing when it is not installed.
    std::optional<std::string> pathOf(const std::string& identifier) const;
    std::optional<BundleInfo> infoOf(const std::string& identifier) const;

    const Registry& registry() const { return registry_; }

private:
    Registry registry_;
    mutable RegistryLinks links_;
    mutable std::mutex mutex_; // of what follows
    mutable BundleInfoCache asked_;
    mutable RegisteredBundles registered_;
};

} // namespace dubrix
