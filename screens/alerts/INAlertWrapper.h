#pragma once

#include "screens/alerts/AlertViewDelegate.h"

#include <functional>
#include <mutex>

namespace dubrix {

/// Turns what becomes of an alert view into one call: which button it was, its cancel button's
/// index when the system took the alert away.
class INAlertWrapper : public AlertViewDelegate {
public:
    using CompletionBlock = std::function<void(AlertView& alertView, ButtonIndex index)>;

    void alertViewClickedButtonAtIndex(AlertView& alertView, ButtonIndex index) override;
    void alertViewCancel(AlertView& alertView) override;

    /// A copy; empty when there is none. The block may be read and set from any thread.
    CompletionBlock completionBlock() const;
    void setCompletionBlock(CompletionBlock block);

private:
    mutable std::mutex access_;
    CompletionBlock completionBlock_;
};

} // namespace dubrix
