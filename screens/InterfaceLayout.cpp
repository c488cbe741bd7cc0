#include "screens/InterfaceLayout.h"

#include "screens/AboutTableViewController.h"
#include "screens/FirstViewController.h"
#include "screens/ModalStack.h"
#include "screens/NavigationController.h"
#include "screens/PrefsViewController.h"
#include "screens/TabBarController.h"

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
    return tabs;
}

} // namespace dubrix
