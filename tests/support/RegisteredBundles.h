#pragma once

#include "device/registry/Registry.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

namespace dubrix {

inline void makeFoldersOf(const Registry& registry) {
    for (const auto place : {Registry::applicationPath, Registry::registryPath})
        std::filesystem::create_directories(registry.hostPath(place));
}

/// Has an application installed without its archive; `more` are further entries of its Info.plist
/// in old-style text.
inline void enterBundle(const Registry& registry, const std::string& identifier,
                        const std::string& name, const std::string& more = "") {
    const std::string path = std::string(Registry::applicationPath) + "/" + identifier + "/It.app";
    putFile(registry.hostPath(path) / "Info.plist", "{CFBundleIdentifier = \"" + identifier +
                                                        "\"; CFBundleDisplayName = \"" + name +
                                                        "\"; " + more + "}");
    ASSERT_TRUE(static_cast<bool>(registry.enter(identifier, path)));
}

} // namespace dubrix
