#pragma once

#include "device/home/HomeApplications.h"
#include "tests/device/DeviceFolder.h"

namespace dubrix {

/// A device whose applications come and go.
class HomeDevice : public testing::Test {
protected:
    HomeDevice() {
        for (const auto place : {Registry::applicationPath, Registry::registryPath})
            std::filesystem::create_directories(registry.hostPath(place));
    }

    /// As com.example.NAME; `more` are further entries of the Info.plist in old-style text.
    void install(const std::string& name, const std::string& more = "") const {
        const std::string path = std::string(Registry::applicationPath) + "/" + name + "/It.app";
        putFile(registry.hostPath(path) / "Info.plist",
                "{CFBundleDisplayName = \"" + name + "\"; " + more + "}");
        ASSERT_TRUE(static_cast<bool>(registry.enter("com.example." + name, path)));
    }
    void strike(const std::string& name) const {
        ASSERT_TRUE(static_cast<bool>(registry.strike("com.example." + name)));
    }

    const DeviceFolder device;
    const Registry registry = device.registry();
};

} // namespace dubrix
