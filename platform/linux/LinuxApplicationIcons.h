#pragma once

#include "device/BundleIcon.h"
#include "device/Registry.h"
#include "platform/ApplicationIcons.h"

namespace dubrix {

/// Reads the icons from the bundles on the device.
class LinuxApplicationIcons final : public ApplicationIcons {
public:
    explicit LinuxApplicationIcons(const std::filesystem::path& root) : registry_(root) {}

    std::optional<RgbaImage> iconOfBundle(const std::string& path, unsigned pixels) const override {
        return dubrix::iconOfBundle(registry_.hostPath(path), pixels);
    }

private:
    Registry registry_;
};

} // namespace dubrix
