#pragma once

#include "screens/NotificationCenter.h"
#include "screens/alerts/AlertController.h"
#include "screens/containers/ModalStack.h"
#include "screens/prefs/PrefsViewController.h"
#include "tests/engine/EngineTest.h"

#include <QCoreApplication>
#include <memory>

namespace dubrix {

/// The main screen with its modal screens, over the same platform as the engine's tests.
class PrefsScreenTest : public EngineTest {
protected:
    /// Loads a new screen from the settings as they are.
    void load() {
        screen = std::make_unique<PrefsViewController>(platform, notifications);
        screen->setModalStack(&modals);
        screen->loadViewIfNeeded();
        journal.clear();
    }
    AlertController* alert() const { return qobject_cast<AlertController*>(modals.topmost()); }
    QString title() const { return alert() ? alert()->title() : QString(); }
    /// Presses a button of the topmost alert, if it has it, and lets its handler run.
    void press(const QString& button) const {
        ASSERT_TRUE(alert() && alert()->buttons().contains(button)) << button.toStdString();
        alert()->press(static_cast<int>(alert()->buttons().indexOf(button)));
        QCoreApplication::processEvents();
    }

    NotificationCenter notifications;
    ModalStack modals;
    std::unique_ptr<PrefsViewController> screen;
};

} // namespace dubrix
