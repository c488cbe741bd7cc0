#pragma once

#include "engine/DXShared.h"
#include "formats/lists/PropertyList.h"
#include "platform/desktop/PaintingPlatform.h"
#include "platform/posix/PosixPlatform.h"
#include "screens/NotificationCenter.h"
#include "screens/alerts/AlertController.h"
#include "screens/containers/ModalStack.h"
#include "tests/support/RecordedPlatform.h"
#include "tests/support/RegisteredBundles.h"

#include <QCoreApplication>

namespace dubrix {

/// A device of its own with the real platform on it, and what screens share.
class ScreenDevice : public testing::Test {
protected:
    ScreenDevice() {
        makeFoldersOf(registry);
        std::filesystem::create_directories(folder / "var/mobile/Library/Preferences");
    }

    void install(const std::string& identifier, const std::string& name,
                 const std::string& more = "") const {
        enterBundle(registry, identifier, name, more);
    }
    /// Writes the settings file, in old-style text.
    void choose(const std::string& settings) const {
        putFile(folder.path().native() + settingsFilePath, settings);
    }
    std::string stored(std::string_view key) {
        const auto value = DXShared(files, log).retrieveValueForKey(key);
        return value ? value->stringValue().value_or("absent") : "absent";
    }

    AlertController* alert() const { return qobject_cast<AlertController*>(modals.topmost()); }
    QString title() const { return alert() ? alert()->title() : QString(); }
    /// Presses a button of the topmost alert, if it has it, and lets its handler run.
    void press(const QString& button) const {
        ASSERT_TRUE(alert() && alert()->buttons().contains(button)) << button.toStdString();
        alert()->press(static_cast<int>(alert()->buttons().indexOf(button)));
        QCoreApplication::processEvents();
    }

    TemporaryFolder folder;
    Registry registry{folder.path()};
    RecordedLog log;
    PosixPlatform posix{folder.path(), DEVICE_PATHS};
    PosixFileManager& files = posix.files;
    PaintingPlatform painting{posix.ports({.log = &log})};
    const Platform platform = painting.ports();
    NotificationCenter notifications;
    ModalStack modals;
};

} // namespace dubrix
