#include "screens/alerts/AlertView.h"

namespace dubrix {

std::shared_ptr<AlertView> AlertView::make(ViewController& window, const QString& title,
                                           const QString& message) {
    return std::make_shared<AlertView>(OnlyMake{}, window, title, message);
}

ButtonIndex AlertView::addButtonWithTitle(const QString& title) {
    buttons_.append(title);
    return buttons_.size() - 1;
}

void AlertView::show() {
    if (shown_ || !window_)
        return;
    auto alert = std::make_unique<AlertController>(title_, message_);
    for (ButtonIndex index = 0; index < buttons_.size(); ++index)
        alert->addAction(buttons_.at(index),
                         [self = shared_from_this(), index] { self->clicked(index); });
    shown_ = alert.get();
    window_->presentViewController(std::move(alert), true);
}

void AlertView::showWithCompletion(INAlertWrapper::CompletionBlock completion) {
    auto wrapper = std::make_unique<INAlertWrapper>();
    wrapper->setCompletionBlock(std::move(completion));
    setDelegate(wrapper.get());
    wrapper_ = std::move(wrapper);
    show();
}

void AlertView::clicked(ButtonIndex index) {
    if (!std::exchange(shown_, nullptr))
        return; // taken away between the press and now
    if (delegate_)
        delegate_->alertViewClickedButtonAtIndex(*this, index);
}

void AlertView::cancelBySystem() {
    const QPointer<AlertController> shown = std::exchange(shown_, nullptr);
    if (!shown)
        return;
    shown->dismissViewController(true);
    if (delegate_)
        delegate_->alertViewCancel(*this);
}

} // namespace dubrix
