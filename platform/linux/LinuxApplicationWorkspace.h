#pragma once

#include "device/Registry.h"
#include "platform/ApplicationWorkspace.h"

namespace dubrix {

/// Answers from the links of the device's registry alone; no bundle is read.
class LinuxApplicationWorkspace final : public ApplicationWorkspace {
public:
    explicit LinuxApplicationWorkspace(const std::filesystem::path& root) : registry_(root) {}

    bool applicationIsInstalled(const std::string& identifier) const override {
        return registry_.isInstalled(identifier);
    }

private:
    Registry registry_;
};

} // namespace dubrix
