#pragma once

#include "formats/lists/PropertyList.h"
#include "overlays/ProgressHUD.h"
#include "platform/HelpPages.h"
#include "platform/UrlOpener.h"
#include "screens/AppDelegate.h"
#include "screens/InterfaceLayout.h"
#include "screens/about/AboutTableViewController.h"
#include "screens/containers/TabBarController.h"
#include "screens/containers/TemplateImageProvider.h"
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
    WholeWindow() {
        ProgressHUD::useStage(stage);
        install("com.example.one", "One");
        choose("{bundleID = \"com.example.one\"; appName = One; customNameToggle = 1;"
               " customColorToggle = 1;}");
        information.setValueForKey("CFBundleVersion", PropertyList::string("57"));
        delegate.window.rootViewController =
            makeInterfaceLayout(platform, notifications, about, modals);
        root = delegate.window.rootViewController.get();
        delegate.applicationDidFinishLaunchingWithOptions();
        root->loadViewIfNeeded();
        engine->addImageProvider(QStringLiteral("template"), new TemplateImageProvider);
        open("qrc:/qt/qml/Dubrix/Main.qml",
             {{QStringLiteral("root"), QVariant::fromValue(root)},
              {QStringLiteral("stage"), QVariant::fromValue(&stage)}});
    }
    ~WholeWindow() override {
        ProgressHUD::withdrawStage();
        engine.reset();
    }
    using QuickWindow::press, ScreenDevice::press;

    PrefsViewController& prefs() const {
        return static_cast<PrefsViewController&>(*root->viewControllerAt(0));
    }

    QQuickItem* itemOf(const QString& name) const {
        QAccessibleInterface* element = find(name);
        EXPECT_TRUE(element) << name.toStdString();
        return element ? qobject_cast<QQuickItem*>(element->object()) : nullptr;
    }
    /// The middle of what has this name, where it stands now.
    QPoint placeOf(const QString& name) const {
        const QQuickItem* item = itemOf(name);
        return item ? item->mapRectToScene({0, 0, item->width(), item->height()}).center().toPoint()
                    : QPoint();
    }
    void click(const QPoint& place) const {
        QTest::mouseClick(window, Qt::LeftButton, Qt::NoModifier, place);
    }
    void click(const QString& name) const { click(placeOf(name)); }
    /// Whether the topmost modal screen has come all the way.
    bool rested() const {
        for (const QQuickItem* layer : window->contentItem()->childItems())
            if (layer->property("presence").isValid() && layer->property("presence").toReal() < 1)
                return false;
        return true;
    }
    /// Until it has, and what is below it has gone or stays.
    bool settled() const {
        return QTest::qWaitFor([this] {
            return modals.rowCount() == (modals.topmost() ? 1 : 0) &&
                   (!modals.topmost() || rested());
        });
    }
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
