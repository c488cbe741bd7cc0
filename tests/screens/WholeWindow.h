#pragma once

#include "platform/HelpPages.h"
#include "platform/UrlOpener.h"
#include "screens/AppDelegate.h"
#include "screens/about/AboutTableViewController.h"
#include "screens/containers/TabBarController.h"
#include "screens/overlay/QuickOverlayStage.h"
#include "screens/prefs/PrefsViewController.h"
#include "tests/screens/ScreenDevice.h"
#include "tests/support/ScreenReader.h"

#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QTest>

namespace dubrix {

struct NoPages final : HelpPages, UrlOpener {
    std::string siteAddress() override { return {}; }
    bool canOpenURL(const std::string&) const override { return false; }
    void openURL(const std::string&) override {}
};

/// The whole window over a real device with one application, which is chosen, and both switches on;
/// under a pointer, a keyboard and a screen reader.
class WholeWindow : public ScreenDevice {
protected:
    WholeWindow();
    ~WholeWindow() override;

    PrefsViewController& prefs() const {
        return static_cast<PrefsViewController&>(*root->viewControllerAt(0));
    }

    QAccessibleInterface* find(const QString& name) const { return reader.find(name); }
    QQuickItem* itemOf(const QString& name) const;
    /// What has the keyboard.
    QString focused() const;
    /// The middle of what has this name, where it stands now.
    QPoint placeOf(const QString& name) const;
    void click(const QPoint& place) const {
        QTest::mouseClick(window, Qt::LeftButton, Qt::NoModifier, place);
    }
    void click(const QString& name) const { click(placeOf(name)); }
    void key(int code, Qt::KeyboardModifiers modifiers = {}) const {
        QTest::keyClick(window, static_cast<Qt::Key>(code), modifiers);
    }
    /// Whether the topmost modal screen has come all the way.
    bool rested() const;
    /// Until it has, and what is below it has gone or stays.
    bool settled() const;
    /// Until no modal screen is left.
    bool alone() const {
        return QTest::qWaitFor([this] { return modals.rowCount() == 0; });
    }

    NoPages pages;
    const std::unique_ptr<const PropertyList> information;
    const AboutServices about{log, pages, pages, *information};
    QuickOverlayStage stage;
    AppDelegate delegate;
    TabBarController* root = nullptr;
    QQmlApplicationEngine engine;
    QQuickWindow* window = nullptr;
    const ScreenReader reader{window};
};

} // namespace dubrix
