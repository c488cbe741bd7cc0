#include "device/InstalledApplications.h"

#include <algorithm>

namespace dubrix {

std::vector<InstalledApplication> InstalledApplications::all() const {
    const std::scoped_lock lock(bundlesMutex_);
    BundleInfoCache::Round bundles(bundles_);
    std::vector<InstalledApplication> applications;
    const std::map<std::string, std::string> paths = registry_.paths();
    std::vector<std::filesystem::path> folders;
    for (const auto& [identifier, path] : paths)
        folders.push_back(registry_.hostPath(path));
    std::ranges::sort(folders); // two identifiers may lead to one bundle
    folders.erase(std::unique(folders.begin(), folders.end()), folders.end());
    bundles.readAhead(folders);
    for (const auto& [identifier, path] : paths) {
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
