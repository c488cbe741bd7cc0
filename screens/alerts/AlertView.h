#pragma once

#include "screens/alerts/AlertController.h"
#include "screens/alerts/INAlertWrapper.h"

#include <QPointer>
#include <memory>

namespace dubrix {

/// The older kind of alert, which tells a delegate what was pressed. It looks like any other alert
/// and lives at least as long as it is shown.
class AlertView : public std::enable_shared_from_this<AlertView> {
    struct OnlyMake {};

public:
    AlertView(OnlyMake, ViewController& window, const QString& title, const QString& message)
        : window_(&window),
          title_(title),
          message_(message) {}
    /// `window` is a screen of the window over which the alert is shown; it is not owned.
    static std::shared_ptr<AlertView> make(ViewController& window, const QString& title,
                                           const QString& message);

    ButtonIndex addButtonWithTitle(const QString& title);
    ButtonIndex cancelButtonIndex() const { return cancelButtonIndex_; }
    void setCancelButtonIndex(ButtonIndex index) { cancelButtonIndex_ = index; }

    /// Not owned.
    AlertViewDelegate* delegate() const { return delegate_; }
    void setDelegate(AlertViewDelegate* delegate) { delegate_ = delegate; }

    /// Does nothing while the alert is shown already.
    void show();
    /// Shows the alert with a new `INAlertWrapper` as its delegate, which lives as long as it.
    void showWithCompletion(INAlertWrapper::CompletionBlock completion);
    /// The system takes the alert away; does nothing while it is not shown.
    void cancelBySystem();

private:
    void clicked(ButtonIndex index);

    QPointer<ViewController> window_;
    QString title_;
    QString message_;
    QStringList buttons_;
    ButtonIndex cancelButtonIndex_ = -1;
    AlertViewDelegate* delegate_ = nullptr;
    std::unique_ptr<INAlertWrapper> wrapper_;
    QPointer<AlertController> shown_;
};

} // namespace dubrix
