#include "screens/alerts/INAlertWrapper.h"

#include "screens/alerts/AlertView.h"

namespace dubrix {

void INAlertWrapper::alertViewClickedButtonAtIndex(AlertView& alertView, ButtonIndex index) {
    // The block may show the alert view again, with a new wrapper in place of this one.
    if (const CompletionBlock block = completionBlock())
        block(alertView, index);
}

void INAlertWrapper::alertViewCancel(AlertView& alertView) {
    if (const CompletionBlock block = completionBlock())
        block(alertView, alertView.cancelButtonIndex());
}

INAlertWrapper::CompletionBlock INAlertWrapper::completionBlock() const {
    const std::lock_guard lock(access_);
    return completionBlock_;
}

void INAlertWrapper::setCompletionBlock(CompletionBlock block) {
    const std::lock_guard lock(access_);
    completionBlock_.swap(block);
}

} // namespace dubrix
