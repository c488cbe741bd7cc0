#pragma once

#include "device/BundleInfoCache.h"
#include "device/Registry.h"

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
    explicit InstalledApplications(const std::filesystem::path& root) : registry_(root) {}

    /// The registered applications sorted by the identifiers' bytes, then the system's. Bundles
    /// that say nothing of themselves are left out.
    std::vector<InstalledApplication> all() const;

    const Registry& registry() const { return registry_; }

private:
    Registry registry_;
    mutable std::mutex bundlesMutex_;
    mutable BundleInfoCache bundles_;
};

} // namespace dubrix
