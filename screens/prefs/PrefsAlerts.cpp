#include "screens/alerts/AlertController.h"
#include "screens/prefs/PrefsViewController.h"

namespace dubrix {

void PrefsViewController::presentAlert(const Text& title, const Text& message,
                                       std::vector<Button> buttons, int cancelButton) {
    auto alert = std::make_unique<AlertController>(QString::fromStdString(title.value_or("")),
                                                   QString::fromStdString(message.value_or("")));
    for (Button& button : buttons)
        alert->addAction(QString::fromStdString(button.title), std::move(button.block));
    alert->setCancelButton(cancelButton);
    presentViewController(std::move(alert), true);
}

void PrefsViewController::showSimpleAlertWithTitle(const Text& title, const Text& message,
                                                   const std::string& okText) {
    presentAlert(title, message, {{okText, [] {}}});
}

void PrefsViewController::show2ButtonAlertWithTitle(const Text& title, const Text& message,
                                                    const std::string& okButton,
                                                    const std::string& cancelButton,
                                                    AlertBlock cancelBlock, AlertBlock okBlock) {
    presentAlert(title, message,
                 {{cancelButton, std::move(cancelBlock)}, {okButton, std::move(okBlock)}}, 0);
}

void PrefsViewController::show3ButtonAlertWithTitle(const Text& title, const Text& message,
                                                    const std::string& firstButton,
                                                    const std::string& secondButton,
                                                    const std::string& cancelButton,
                                                    AlertBlock firstBlock, AlertBlock secondBlock) {
    // The cancel button has no block of its own: declining is the same answer as the second.
    presentAlert(title, message,
                 {{firstButton, std::move(firstBlock)},
                  {secondButton, secondBlock},
                  {cancelButton, secondBlock}});
}

void PrefsViewController::presentProgressAlert(const ProgressAlert& alert) {
    auto shown = std::make_unique<AlertController>(QString::fromStdString(alert.title),
                                                   QString::fromStdString(alert.message));
    const Rect& frame = alert.spinnerFrame;
    shown->addSpinner({frame.origin.x, frame.origin.y, frame.size.width, frame.size.height});
    progressAlert_ = shown.get();
    presentViewController(std::move(shown), false);
}

void PrefsViewController::dismissProgressAlert() {
    if (progressAlert_)
        progressAlert_->dismissViewController(true);
}

Size PrefsViewController::mainViewSize() const {
    return {viewSize().width(), viewSize().height()};
}

} // namespace dubrix
