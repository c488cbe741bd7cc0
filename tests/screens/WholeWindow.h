#pragma once

#include "formats/lists/PropertyList.h"
#include "platform/HelpPages.h"
#include "platform/UrlOpener.h"
#include "screens/AppDelegate.h"
#include "screens/about/AboutTableViewController.h"
#include "screens/containers/TabBarController.h"
#include "screens/overlay/QuickOverlayStage.h"
#include "screens/prefs/PrefsViewController.h"
#include "tests/screens/ScreenDevice.h"
#include "tests/support/QuickWindow.h"

namespace dubrix {

/// What the about screen leads to.
struct Outside final : HelpPages, UrlOpener {
    std::string siteAddress() override { return site; }
    bool canOpenURL(const std::string& address) const override {
        return std::ranges::count(installed, address) > 0;
    }
    void openURL(const std::string& address) override { opened.push_back(address); }

    std::string site;
    std::vector<std::string> installed, opened;
};

/// The whole window over a real device with one application, which is chosen, and both switches on;
/// under a pointer, too.
class WholeWindow : public ScreenDevice, protected QuickWindow {
protected:
    WholeWindow();
    ~WholeWindow() override;
    using QuickWindow::press, ScreenDevice::press;

    PrefsViewController& prefs() const {
        return static_cast<PrefsViewController&>(*root->viewControllerAt(0));
    }

    QQuickItem* itemOf(const QString& name) const;
    /// The middle of what has this name, where it stands now.
    QPoint placeOf(const QString& name) const;
    void click(const QPoint& place) const {
        QTest::mouseClick(window, Qt::LeftButton, Qt::NoModifier, place);
    }
    void click(const QString& name) const { click(placeOf(name)); }
    /// Whether the topmost modal screen has come all the way.
    bool rested() const;
    /// Until it has, and what is below it has gone or stays.
    bool settled() const;
    /// Until no modal screen is left.
    bool alone() const {
        return QTest::qWaitFor([this] { return modals.rowCount() == 0; });
    }

    Outside outside;
    PropertyList information = PropertyList::dictionary();
    const AboutServices about{log, outside, outside, information};
    QuickOverlayStage stage;
    AppDelegate delegate;
    TabBarController* root = nullptr;
};

} // namespace dubrix
