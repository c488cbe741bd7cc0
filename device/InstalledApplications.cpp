#include "device/InstalledApplications.h"

namespace dubrix {

std::vector<InstalledApplication> InstalledApplications::all() const {
    const std::scoped_lock lock(bundlesMutex_);
    BundleInfoCache::Round bundles(bundles_);
    std::vector<InstalledApplication> applications;
    for (const auto& [identifier, path] : registry_.paths()) {
        const BundleInfo* const info = bundles.read(registry_.hostPath(path));
        if (info)
            applications.push_back({identifier, info->displayName, path, false, info->hidden});
    }
    for (const std::string& path : registry_.systemBundles()) {
        const BundleInfo* const info = bundles.read(registry_.hostPath(path));
        if (info && info->identifier)
            applications.push_back(
                {*info->identifier, info->displayName, path, true, info->hidden});
    }
    return applications;
}

} // namespace dubrix
