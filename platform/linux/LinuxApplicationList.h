#pragma once

#include "device/Registry.h"
#include "platform/ApplicationList.h"
#include "platform/linux/BundleInfoCache.h"

#include <mutex>

namespace dubrix {

/// Answers from the device's registry and what the bundles' Info.plist files say at this moment;
/// for the whole list only those files are read that have changed since it was last asked for. Any
/// thread.
class LinuxApplicationList final : public ApplicationList {
public:
    explicit LinuxApplicationList(const std::filesystem::path& root) : registry_(root) {}

    std::optional<std::string> valueForKey(std::string_view key,
                                           const std::string& forDisplayIdentifier) const override;
    std::map<std::string, std::string> applications() const override;
    std::vector<Entry> entries() const override;

private:
    Registry registry_;
    mutable std::mutex bundlesMutex_;
    mutable BundleInfoCache bundles_;
};

} // namespace dubrix
