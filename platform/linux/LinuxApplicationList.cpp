#include "platform/linux/LinuxApplicationList.h"

namespace dubrix {

std::optional<std::string>
LinuxApplicationList::valueForKey(std::string_view key,
                                  const std::string& forDisplayIdentifier) const {
    if (key == "path")
        return registry_.pathOf(forDisplayIdentifier);
    const bool name = key == "displayName";
    if (!name && key != "bundleVersion")
        return std::nullopt;
    const auto info = registry_.infoOf(forDisplayIdentifier);
    if (!info)
        return std::nullopt;
    return name ? info->displayName : info->version;
}

std::map<std::string, std::string> LinuxApplicationList::applications() const {
    std::map<std::string, std::string> names;
    for (Entry& entry : entries())
        names.emplace(std::move(entry.displayIdentifier), std::move(entry.displayName));
    return names;
}

std::vector<ApplicationList::Entry> LinuxApplicationList::entries() const {
    const std::scoped_lock lock(bundlesMutex_);
    BundleInfoCache::Round bundles(bundles_);
    std::vector<Entry> entries;
    for (const auto& [identifier, path] : registry_.paths()) {
        const BundleInfo* const info = bundles.read(registry_.hostPath(path));
        if (info)
            entries.push_back({identifier, info->displayName, path, false, info->hidden});
    }
    for (const std::string& path : registry_.systemBundles()) {
        const BundleInfo* const info = bundles.read(registry_.hostPath(path));
        if (info && info->identifier)
            entries.push_back({*info->identifier, info->displayName, path, true, info->hidden});
    }
    return entries;
}

} // namespace dubrix
