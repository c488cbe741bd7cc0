#pragma once

#include "device/Registry.h"
#include "platform/ApplicationList.h"

namespace dubrix {

/// Answers from the device's registry and what the bundles' Info.plist files say at this moment.
class LinuxApplicationList final : public ApplicationList {
public:
    explicit LinuxApplicationList(const std::filesystem::path& root) : registry_(root) {}

    std::optional<std::string> valueForKey(std::string_view key,
                                           const std::string& forDisplayIdentifier) const override;
    std::map<std::string, std::string> applications() const override;
    std::vector<Entry> entries() const override;

private:
    Registry registry_;
};

} // namespace dubrix
