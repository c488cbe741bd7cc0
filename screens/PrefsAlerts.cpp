#include "screens/AlertController.h"
#include "screens/PrefsViewController.h"

namespace dubrix {

void PrefsViewController::presentAlert(const Text& title, const Text& message,
                                       std::vector<Button> buttons) {
    auto alert = std::make_unique<AlertController>(QString::fromStdString(title.value_or("")),
                                                   QString::fromStdString(message.value_or("")));
    const QPointer<AlertController> shown = alert.get();
    for (Button& button : buttons)
        alert->addAction(QString::fromStdString(button.title),
                         [shown, block = std::move(button.block)] {
                             shown->dismissViewController(true);
                             block();
                         });
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
                 {{cancelButton, std::move(cancelBlock)}, {okButton, std::move(okBlock)}});
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
    const ProgressAlert::Frame& frame = alert.spinnerFrame;
    shown->addSpinner({frame.x, frame.y, frame.width, frame.height});
    progressAlert_ = shown.get();
    presentViewController(std::move(shown), false);
}

void PrefsViewController::dismissProgressAlert() {
    if (progressAlert_)
        progressAlert_->dismissViewController(true);
}

Alerts::ViewSize PrefsViewController::mainViewSize() const {
    return {viewSize().width(), viewSize().height()};
}

} // namespace dubrix
