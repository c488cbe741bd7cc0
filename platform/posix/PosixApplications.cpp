#include "platform/posix/PosixApplications.h"

#include "device/registry/BundleIcon.h"
#include "device/registry/BundleInfo.h"
#include "device/registry/InstalledApplications.h"

namespace dubrix {

bool PosixApplicationWorkspace::applicationIsInstalled(const std::string& identifier) const {
    return registry_.isInstalled(identifier);
}

std::optional<std::string>
PosixApplicationList::valueForKey(std::string_view key,
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

std::map<std::string, std::string> PosixApplicationList::applications() const {
    std::map<std::string, std::string> names;
    for (Entry& entry : entries())
        names.emplace(std::move(entry.displayIdentifier), std::move(entry.displayName));
    return names;
}

std::vector<ApplicationList::Entry> PosixApplicationList::entries() const {
    std::vector<Entry> entries;
    for (InstalledApplication& application : installedApplications(registry_))
        entries.push_back({std::move(application.identifier), std::move(application.name),
                           std::move(application.path), application.isSystemApplication,
                           application.isHidden});
    return entries;
}

std::optional<RgbaImage> PosixApplicationIcons::iconOfBundle(const std::string& path,
                                                             unsigned pixels) const {
    return dubrix::iconOfBundle(registry_.hostPath(path), pixels);
}

} // namespace dubrix
