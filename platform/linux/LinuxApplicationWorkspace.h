#pragma once

#include "device/RegistryLinks.h"
#include "platform/ApplicationWorkspace.h"

namespace dubrix {

/// Answers from the links of the device's registry alone; no bundle is read.
class LinuxApplicationWorkspace final : public ApplicationWorkspace {
public:
    explicit LinuxApplicationWorkspace(const std::filesystem::path& root)
        : links_(Registry(root)) {}

    bool applicationIsInstalled(const std::string& identifier) const override {
        return links_.isInstalled(identifier);
    }

private:
    mutable RegistryLinks links_;
};

} // namespace dubrix
