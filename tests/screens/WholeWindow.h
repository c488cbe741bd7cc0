#pragma once

#include "controls/ApplicationIconProvider.h"
#include "formats/lists/PropertyList.h"
#include "overlays/ProgressHUD.h"
#include "platform/HelpPages.h"
#include "platform/UrlOpener.h"
#include "screens/InterfaceLayout.h"
#include "screens/about/AboutTableViewController.h"
#include "screens/containers/TabBarController.h"
#include "screens/containers/TemplateImageProvider.h"
#include "screens/overlay/QuickOverlayStage.h"
#include "screens/prefs/PrefsViewController.h"
#include "tests/screens/PickerDevice.h"

#include <QAccessible>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQuickWindow>
#include <QTest>

namespace dubrix {

struct NoPages final : HelpPages, UrlOpener {
    std::string siteAddress() override { return {}; }
    bool canOpenURL(const std::string&) const override { return false; }
    void openURL(const std::string&) override {}
};

/// The whole window over a real device with one application, which is chosen, and both switches on.
class WholeWindow : public PickerDevice {
protected:
    WholeWindow() {
        ProgressHUD::useStage(stage);
        install("com.example.one", "One");
        putFile(folder / "var/mobile/Library/Preferences/com.q7r2m.dubrix2.plist",
                "{bundleID = \"com.example.one\"; appName = One; customNameToggle = 1;"
                " customColorToggle = 1;}");
        root = makeInterfaceLayout(platform, notifications, about, modals);
        root->loadViewIfNeeded();
        engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
        engine.addImageProvider(QStringLiteral("template"), new TemplateImageProvider);
        engine.addImageProvider(QLatin1String(ApplicationIconProvider::name),
                                new ApplicationIconProvider([](const std::string&, unsigned) {
                                    return std::optional<RgbaImage>();
                                }));
        engine.setInitialProperties({{QStringLiteral("root"), QVariant::fromValue(root.get())},
                                     {QStringLiteral("stage"), QVariant::fromValue(&stage)}});
        engine.load(QUrl(QStringLiteral("qrc:/qt/qml/Dubrix/Main.qml")));
        window = qobject_cast<QQuickWindow*>(engine.rootObjects().value(0));
        if (window && QTest::qWaitForWindowExposed(window))
            window->requestActivate();
    }
    ~WholeWindow() override { ProgressHUD::withdrawStage(); }

    PrefsViewController& prefs() const {
        return static_cast<PrefsViewController&>(*root->viewControllerAt(0));
    }

    NoPages pages;
    const PropertyList information = PropertyList::dictionary();
    const AboutServices about{log, pages, pages, information};
    QuickOverlayStage stage;
    std::unique_ptr<TabBarController> root;
    QQmlApplicationEngine engine;
    QQuickWindow* window = nullptr;
};

} // namespace dubrix
