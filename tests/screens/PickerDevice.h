#pragma once

#include "device/registry/Registry.h"
#include "platform/desktop/PaintingPlatform.h"
#include "platform/posix/PosixPlatform.h"
#include "screens/NotificationCenter.h"
#include "screens/applications/AppListSampleViewController.h"
#include "screens/containers/ModalStack.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/UnexpectedDownloads.h"

#include <QStringList>

namespace dubrix {

struct KeptLog final : SystemLog {
    void log(const std::string& text) override { lines.push_back(text); }
    std::vector<std::string> lines;
};

/// A device of its own with the real platform on it.
class PickerDevice : public testing::Test {
protected:
    PickerDevice() {
        for (const auto place : {Registry::applicationPath, Registry::registryPath})
            std::filesystem::create_directories(registry.hostPath(place));
        std::filesystem::create_directories(folder / "var/mobile/Library/Preferences");
    }

    /// Installs an application; `more` are further entries of its Info.plist in old-style text.
    void install(const std::string& identifier, const std::string& name,
                 const std::string& more = "") {
        const std::string path =
            std::string(Registry::applicationPath) + "/" + identifier + "/It.app";
        putFile(registry.hostPath(path) / "Info.plist", "{CFBundleIdentifier = \"" + identifier +
                                                            "\"; CFBundleDisplayName = \"" + name +
                                                            "\"; " + more + "}");
        ASSERT_TRUE(static_cast<bool>(registry.enter(identifier, path)));
    }
    void installSystemApplication(const std::string& identifier, const std::string& name) {
        putFile(folder / "Applications" / (identifier + ".app") / "Info.plist",
                "{CFBundleIdentifier = \"" + identifier + "\"; CFBundleDisplayName = \"" + name +
                    "\";}");
    }

    static QStringList namesIn(const ALApplicationTableDataSource& source) {
        QStringList names;
        for (int row = 0; row < source.rowCount(); ++row)
            names +=
                source.data(source.index(row), ALApplicationTableDataSource::NameRole).toString();
        return names;
    }

    TemporaryFolder folder;
    Registry registry{folder.path()};
    KeptLog log;
    UnexpectedDownloads downloader;
    PosixPlatform posix{folder.path(), DEVICE_PATHS};
    PosixFileManager& files = posix.files;
    PaintingPlatform painting{posix.ports({.log = &log, .downloader = &downloader})};
    const Platform platform = painting.ports();
    NotificationCenter notifications;
    ModalStack modals;
};

} // namespace dubrix
