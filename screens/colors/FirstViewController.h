#pragma once

#include "engine/DXShared.h"
#include "platform/Platform.h"
#include "screens/ViewController.h"
#include "screens/colors/Button.h"
#include "screens/colors/QZColorPickerViewControllerDelegate.h"

#include <memory>

namespace dubrix {

/// A screen of its own to try the colour picker: one wide button, which takes the picked colour.
class FirstViewController : public ViewController, public QZColorPickerViewControllerDelegate {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the application")
    Q_PROPERTY(dubrix::Button* copyButton READ copyButton CONSTANT)

public:
    explicit FirstViewController(const Platform& platform) : platform_(platform) {}

    QString layout() const override { return QStringLiteral("ColorTestView.qml"); }

    /// Null until the view has loaded.
    Button* copyButton() const { return copyButton_.get(); }

    /// Presents a new picker without a delegate: what is picked in it reaches nobody, and only the
    /// window system's own way out leads back.
    Q_INVOKABLE void selectColorTapped();

    QString titleForColorPicker(QZColorPickerViewController& colorPicker) override;
    void colorPickerDidSelectColor(QZColorPickerViewController& colorPicker,
                                   const Color& didSelectColor) override;
    void colorPiclerDidCancel(QZColorPickerViewController& colorPicker) override;

    void showAlert();

    std::unique_ptr<DXShared> sharedClass;

protected:
    void viewDidLoad() override;

private:
    const Platform platform_;
    std::unique_ptr<Button> copyButton_;
};

} // namespace dubrix
