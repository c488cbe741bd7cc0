#include "screens/InterfaceLayout.h"

#include "screens/FirstViewController.h"
#include "screens/ModalStack.h"
#include "screens/PrefsViewController.h"
#include "screens/TabBarController.h"

namespace dubrix {

std::unique_ptr<TabBarController> makeInterfaceLayout(const Platform& platform,
                                                      NotificationCenter& notifications,
                                                      ModalStack& modals) {
    auto tabs = std::make_unique<TabBarController>();
    tabs->setModalStack(&modals);
    tabs->addTab(std::make_unique<PrefsViewController>(platform, notifications),
                 QStringLiteral("Settings"), {}, {});
    const auto mode = TemplateImage::RenderingMode::AlwaysTemplate;
    tabs->addTab(std::make_unique<FirstViewController>(platform), QStringLiteral("Color test"),
                 {QStringLiteral("ColorTestButton.png"), mode},
                 {QStringLiteral("ColorTestButton_ON.png"), mode});
    return tabs;
}

} // namespace dubrix
