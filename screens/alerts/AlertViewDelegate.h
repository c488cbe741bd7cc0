#pragma once

#include <cstddef>

namespace dubrix {

class AlertView;

/// Counts an alert view's buttons in the order in which they were added; -1 is no button.
using ButtonIndex = std::ptrdiff_t;

/// Who is told what becomes of an alert view. Each showing of it ends in one of the two.
class AlertViewDelegate {
public:
    virtual ~AlertViewDelegate() = default;

    virtual void alertViewClickedButtonAtIndex(AlertView& alertView, ButtonIndex index) = 0;
    /// The system took the alert away.
    virtual void alertViewCancel(AlertView& alertView) = 0;
};

} // namespace dubrix
