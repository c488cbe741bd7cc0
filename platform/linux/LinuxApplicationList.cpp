#include "platform/linux/LinuxApplicationList.h"

namespace dubrix {

std::optional<std::string>
LinuxApplicationList::valueForKey(std::string_view key,
                                  const std::string& forDisplayIdentifier) const {
    if (key == "path")
        return links_.pathOf(forDisplayIdentifier);
    const bool name = key == "displayName";
    if (!name && key != "bundleVersion")
        return std::nullopt;
    const auto path = links_.pathOf(forDisplayIdentifier);
    if (!path)
        return std::nullopt;
    const std::scoped_lock lock(mutex_);
    const BundleInfo* const info = asked_.read(registry_.hostPathText(*path));
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
    const std::scoped_lock lock(mutex_);
    std::vector<Entry> entries;
    const std::vector<RegisteredBundles::Bundle>& registered = registered_.current();
    entries.reserve(registered.size());
    for (const RegisteredBundles::Bundle& bundle : registered)
        if (bundle.info)
            entries.push_back({bundle.identifier, bundle.info->displayName, bundle.path, false,
                               bundle.info->hidden});
    for (const std::string& path : registry_.systemBundles()) {
        const BundleInfo* const info = asked_.read(registry_.hostPathText(path));
        if (info && info->identifier)
            entries.push_back({*info->identifier, info->displayName, path, true, info->hidden});
    }
    return entries;
}

} // namespace dubrix
