#include "screens/colors/FirstViewController.h"

#include "screens/alerts/AlertController.h"
#include "screens/colors/ColorSpaces.h"
#include "screens/colors/LocalizedString.h"
#include "screens/colors/QZColorPickerViewController.h"
#include "screens/containers/NavigationController.h"

namespace dubrix {

void FirstViewController::viewDidLoad() {
    ViewController::viewDidLoad();
    sharedClass = std::make_unique<DXShared>(platform_.files, platform_.log);

    // Wider than any screen, so that it spans all of them.
    constexpr double width = 3000;
    copyButton_ = std::make_unique<Button>();
    copyButton_->frame = {viewSize().width() / 2 - width / 2, 230, width, 40};
    copyButton_->title = QStringLiteral("Select Color");
    copyButton_->fontSize = 13;
    copyButton_->titleColor = Qt::black;
    copyButton_->contentHorizontalAlignment = Qt::AlignHCenter;
    copyButton_->setBackgroundColor(QColor(247, 247, 247));
    copyButton_->cornerRadius = 5;
    copyButton_->borderWidth = 0.5;
    copyButton_->borderColor = QColor(206, 206, 206);
}

void FirstViewController::selectColorTapped() {
    auto picker = std::make_unique<QZColorPickerViewController>();
    presentViewController(std::make_unique<NavigationController>(std::move(picker)), true);
}

QString FirstViewController::titleForColorPicker(QZColorPickerViewController&) {
    return localizedStringForKey(QStringLiteral("SelectColor"), QString());
}

void FirstViewController::colorPickerDidSelectColor(QZColorPickerViewController&,
                                                    const Color& didSelectColor) {
    copyButton_->setBackgroundColor(drawable(didSelectColor));
    dismissViewController(true);
}

void FirstViewController::colorPiclerDidCancel(QZColorPickerViewController&) {
    dismissViewController(true);
}

void FirstViewController::showAlert() {
    auto alert = std::make_unique<AlertController>(QStringLiteral("AlertView"), QString());
    alert->addAction(QStringLiteral("GO"), [] {});
    alert->addAction(QStringLiteral("Cancel"), [] {});
    alert->setCancelButton(1);
    presentViewController(std::move(alert), true);
}

} // namespace dubrix
