#pragma once

#include "device/Registry.h"
#include "platform/ApplicationList.h"
#include "platform/linux/BundleInfoCache.h"
#include "platform/linux/RegisteredBundles.h"
#include "platform/linux/RegistryLinks.h"

#include <mutex>

namespace dubrix {

/// Answers from the device's registry and what the bundles' Info.plist files say at this moment.
/// Only those files are read that have changed since they were last asked for. Any thread.
class LinuxApplicationList final : public ApplicationList {
public:
    explicit LinuxApplicationList(const std::filesystem::path& root)
        : registry_(root),
          links_(registry_),
          registered_(registry_) {}

    std::optional<std::string> valueForKey(std::string_view key,
                                           const std::string& forDisplayIdentifier) const override;
    std::map<std::string, std::string> applications() const override;
    std::vector<Entry> entries() const override;

private:
    Registry registry_;
    mutable RegistryLinks links_;
    /// Of what follows.
    mutable std::mutex mutex_;
    mutable BundleInfoCache asked_;
    mutable RegisteredBundles registered_;
};

} // namespace dubrix
