#pragma once

#include "platform/HelpPages.h"
#include "platform/UrlOpener.h"
#include "screens/about/AboutTableViewController.h"
#include "screens/containers/TabBarController.h"
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
    WholeWindow();
    ~WholeWindow() override;

    PrefsViewController& prefs() const {
        return static_cast<PrefsViewController&>(*root->viewControllerAt(0));
    }

    NoPages pages;
    const std::unique_ptr<const PropertyList> information;
    const AboutServices about{log, pages, pages, *information};
    QuickOverlayStage stage;
    std::unique_ptr<TabBarController> root;
    QQmlApplicationEngine engine;
    QQuickWindow* window = nullptr;
};

} // namespace dubrix
