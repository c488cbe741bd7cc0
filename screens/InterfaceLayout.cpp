#include "screens/InterfaceLayout.h"

#include "screens/about/AboutTableViewController.h"
#include "screens/colors/FirstViewController.h"
#include "screens/containers/ModalStack.h"
#include "screens/containers/NavigationController.h"
#include "screens/containers/TabBarController.h"
#include "screens/prefs/PrefsViewController.h"

namespace dubrix {

namespace {

TemplateImage templateImage(const QString& name) {
    return {name, TemplateImage::RenderingMode::AlwaysTemplate};
}

std::unique_ptr<NavigationController> makeAboutTab(const AboutServices& services) {
    auto about = std::make_unique<AboutTableViewController>(services);
    about->setTitle(QStringLiteral("About"));
    return std::make_unique<NavigationController>(std::move(about));
}

void showApplications(TabBarController& tabs) {
    tabs.setSelectedIndex(0);
    static_cast<PrefsViewController*>(tabs.viewControllerAt(0))
        ->tableViewDidSelectRowAtIndexPath(0, 0);
}

void showInstructions(TabBarController& tabs) {
    tabs.setSelectedIndex(1);
    auto& navigation = *static_cast<NavigationController*>(tabs.viewControllerAt(1));
    while (navigation.canGoBack())
        navigation.popViewController();
    static_cast<AboutTableViewController*>(navigation.topViewController())
        ->tableViewDidSelectRowAtIndexPath(1, 0);
}

} // namespace

std::unique_ptr<TabBarController> makeInterfaceLayout(const Platform& platform,
                                                      NotificationCenter& notifications,
                                                      const AboutServices& about,
                                                      ModalStack& modals) {
    auto tabs = std::make_unique<TabBarController>();
    tabs->setModalStack(&modals);
    tabs->addTab(std::make_unique<PrefsViewController>(platform, notifications),
                 QStringLiteral("Settings"), {}, {});
    tabs->addTab(makeAboutTab(about), QStringLiteral("About"),
                 templateImage(QStringLiteral("AboutButton.png")),
                 templateImage(QStringLiteral("AboutButton_ON.png")));
    tabs->addTab(std::make_unique<FirstViewController>(platform), QStringLiteral("Color test"),
                 templateImage(QStringLiteral("ColorTestButton.png")),
                 templateImage(QStringLiteral("ColorTestButton_ON.png")));
    const auto connectTabs = [tabs = tabs.get()](auto asked, void (*show)(TabBarController&)) {
        QObject::connect(tabs, asked, tabs, [tabs, show] { show(*tabs); });
    };
    connectTabs(&TabBarController::searchAsked, showApplications);
    connectTabs(&TabBarController::helpAsked, showInstructions);
    return tabs;
}

} // namespace dubrix
