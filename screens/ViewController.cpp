#include "screens/ViewController.h"

#include "screens/ModalStack.h"

namespace dubrix {

void ViewController::setTitle(const QString& title) {
    if (title != std::exchange(title_, title))
        Q_EMIT titleChanged();
}

void ViewController::loadViewIfNeeded() {
    if (!std::exchange(viewLoaded_, true))
        viewDidLoad();
}

void ViewController::presentViewController(std::unique_ptr<ViewController> modal, bool animated) {
    if (modalStack_)
        modalStack_->present(std::move(modal), *this, animated);
}

void ViewController::dismissViewController(bool animated) {
    if (!modalStack_)
        return;
    if (ViewController* presented = modalStack_->topmostPresentedBy(*this))
        modalStack_->dismiss(*presented, animated);
    else
        modalStack_->dismiss(*this, animated);
}

} // namespace dubrix
