#include "formats/lists/PropertyList.h"
#include "platform/SystemLog.h"
#include "screens/colors/ColorSpaces.h"
#include "screens/colors/QZColorPickerViewController.h"
#include "screens/containers/NavigationController.h"
#include "screens/prefs/PrefsViewController.h"

namespace dubrix {

void PrefsViewController::selectColorTapped() {
    auto picker = QZColorPickerViewController::pickerWithDelegate(*this);
    picker->setCurrentColor(colorView.backgroundColor());
    presentViewController(std::make_unique<NavigationController>(std::move(picker)), true);
}

QString PrefsViewController::titleForColorPicker(QZColorPickerViewController&) {
    return QStringLiteral("Select color");
}

void PrefsViewController::colorPickerDidSelectColor(QZColorPickerViewController&,
                                                    const Color& didSelectColor) {
    const auto [red, green, blue, alpha] = didSelectColor;
    platform().log.log("Color Selected");
    platform().log.log(stringWithFormat("\n red %f \n blue %f \n green %f", red, blue, green));
    const auto store = [this](std::string_view key, double component) {
        sharedClass->addKey(key, PropertyList::real(static_cast<float>(component)));
    };
    store("Red", red);
    store("Green", green);
    store("Blue", blue);
    colorView.setBackgroundColor(drawable(didSelectColor));
    dismissViewController(true);
}

void PrefsViewController::colorPiclerDidCancel(QZColorPickerViewController&) {
    dismissViewController(true);
}

} // namespace dubrix
