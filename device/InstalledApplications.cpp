#include "device/InstalledApplications.h"

namespace dubrix {

std::vector<InstalledApplication> InstalledApplications::all() const {
    const std::scoped_lock lock(mutex_);
    std::vector<InstalledApplication> applications;
    const std::vector<RegisteredBundles::Bundle>& registered = registered_.current();
    applications.reserve(registered.size());
    for (const RegisteredBundles::Bundle& bundle : registered)
        if (bundle.info)
            applications.push_back({bundle.identifier, bundle.info->displayName, bundle.path, false,
                                    bundle.info->hidden});
    for (const std::string& path : registry_.systemBundles()) {
        const BundleInfo* const info = asked_.read(registry_.hostPathText(path));
        if (info && info->identifier)
            applications.push_back(
                {*info->identifier, info->displayName, path, true, info->hidden});
    }
    return applications;
}

std::optional<std::string> InstalledApplications::pathOf(const std::string& identifier) const {
    return links_.pathOf(identifier);
}

std::optional<BundleInfo> InstalledApplications::infoOf(const std::string& identifier) const {
    std::optional<std::string> path = links_.pathOf(identifier);
    const std::scoped_lock lock(mutex_);
    // The Info.plist of one that is replaced meanwhile lies elsewhere.
    for (int tries = 0; path && tries < Registry::mostReplacements; ++tries) {
        if (const BundleInfo* const info = asked_.read(registry_.hostPathText(*path)))
            return *info;
        std::optional<std::string> next = links_.pathOf(identifier);
        if (next == path)
            break;
        path = std::move(next);
    }
    return std::nullopt;
}

} // namespace dubrix
