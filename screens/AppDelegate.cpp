#include "screens/AppDelegate.h"

#include "screens/containers/TabBarController.h"

namespace dubrix {

bool AppDelegate::applicationDidFinishLaunchingWithOptions() {
    const auto mode = TemplateImage::RenderingMode::AlwaysTemplate;
    TabBarItem& item = *window.rootViewController->items().at(0);
    item.setSelectedImage({QStringLiteral("PreferencesButton_ON_7.png"), mode});
    item.setImage({QStringLiteral("PreferencesButton_7.png"), mode});
    return true;
}

unsigned AppDelegate::applicationSupportedInterfaceOrientationsForWindow() const {
    return OrientationPortrait | OrientationPortraitUpsideDown | OrientationLandscapeLeft |
           OrientationLandscapeRight;
}

} // namespace dubrix
