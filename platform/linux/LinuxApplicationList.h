#pragma once

#include "device/InstalledApplications.h"
#include "platform/ApplicationList.h"

namespace dubrix {

/// Answers from the device's registry and what the bundles' Info.plist files say at this moment;
/// for the whole list only those files are read that have changed since it was last asked for. Any
/// thread.
class LinuxApplicationList final : public ApplicationList {
public:
    explicit LinuxApplicationList(const std::filesystem::path& root) : applications_(root) {}

    std::optional<std::string> valueForKey(std::string_view key,
                                           const std::string& forDisplayIdentifier) const override;
    std::map<std::string, std::string> applications() const override;
    std::vector<Entry> entries() const override;

private:
    InstalledApplications applications_;
};

} // namespace dubrix
