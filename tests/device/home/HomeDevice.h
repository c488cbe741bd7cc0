#pragma once

#include "device/home/HomeApplications.h"
#include "tests/device/DeviceFolder.h"
#include "tests/support/RegisteredBundles.h"

namespace dubrix {

/// A device whose applications come and go.
class HomeDevice : public testing::Test {
protected:
    HomeDevice() { makeFoldersOf(registry); }

    /// As com.example.NAME.
    void install(const std::string& name, const std::string& more = "") const {
        enterBundle(registry, "com.example." + name, name, more);
    }
    void strike(const std::string& name) const {
        ASSERT_TRUE(static_cast<bool>(registry.strike("com.example." + name)));
    }

    const DeviceFolder device;
    const Registry registry = device.registry();
};

} // namespace dubrix
