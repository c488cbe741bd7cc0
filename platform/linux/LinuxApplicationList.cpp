#include "platform/linux/LinuxApplicationList.h"

namespace dubrix {

std::optional<std::string>
LinuxApplicationList::valueForKey(std::string_view key,
                                  const std::string& forDisplayIdentifier) const {
    if (key == "path")
        return applications_.pathOf(forDisplayIdentifier);
    const bool name = key == "displayName";
    if (!name && key != "bundleVersion")
        return std::nullopt;
    const auto info = applications_.infoOf(forDisplayIdentifier);
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
    std::vector<Entry> entries;
    for (InstalledApplication& application : applications_.all())
        entries.push_back({std::move(application.identifier), std::move(application.name),
                           std::move(application.path), application.isSystemApplication,
                           application.isHidden});
    return entries;
}

} // namespace dubrix
