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

/// The applications of a device with what their bundles say of themselves at this moment. Only
/// those links and Info.plist files are read that have changed since they were last asked for. Any
/// thread.
class InstalledApplications {
public:
    explicit InstalledApplications(const std::filesystem::path& root)
        : registry_(root),
          links_(registry_),
          registered_(registry_) {}

    /// Where the bundle of a registered application lies, as in Registry.
    std::optional<std::string> pathOf(const std::string& identifier) const {
        return links_.pathOf(identifier);
    }

    /// What the bundle of a registered application says; nothing when it says nothing.
    std::optional<BundleInfo> infoOf(const std::string& identifier) const;

    /// The registered applications sorted by the identifiers' bytes, then the system's. Bundles
    /// that say nothing of themselves are left out.
    std::vector<InstalledApplication> all() const;

    const Registry& registry() const { return registry_; }

private:
    Registry registry_;
    mutable RegistryLinks links_;
    /// Of what follows.
    mutable std::mutex mutex_;
    mutable BundleInfoCache asked_;
    mutable RegisteredBundles registered_;
};

} // namespace dubrix
