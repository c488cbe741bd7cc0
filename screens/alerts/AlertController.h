#pragma once

#include "screens/ViewController.h"

#include <QRectF>
#include <QStringList>
#include <functional>
#include <vector>

namespace dubrix {

/// A modal alert: title, message and buttons in the order in which they were added. It has no
/// time-out and goes away only through its buttons or its presenter.
class AlertController : public dubrix::ViewController {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the application")
    Q_PROPERTY(QString message READ message CONSTANT)
    Q_PROPERTY(QStringList buttons READ buttons CONSTANT)
    /// Which of them, counted from 0, leaves everything as it is; -1 when none does.
    Q_PROPERTY(int cancelButton READ cancelButton CONSTANT)
    /// The turning spinner's place in points; empty for an alert without one.
    Q_PROPERTY(QRectF spinnerFrame READ spinnerFrame CONSTANT)

public:
    using Handler = std::function<void()>;

    AlertController(const QString& title, const QString& message);

    QString layout() const override { return QStringLiteral("AlertView.qml"); }
    QString modalLayout() const override { return layout(); }
    bool coversPresenter() const override { return false; }

    /// Adds a button of the default style; `handler` runs once, when it is pressed.
    void addAction(const QString& title, Handler handler);
    void setCancelButton(int button) { cancelButton_ = button; }
    void addSpinner(const QRectF& frame) { spinnerFrame_ = frame; }

    QString message() const { return message_; }
    QStringList buttons() const;
    int cancelButton() const { return cancelButton_; }
    QRectF spinnerFrame() const { return spinnerFrame_; }

    /// Presses a button. The alert is dismissed and the button's handler runs, both from the event
    /// loop, when the layout's own code has returned: the handler may work for minutes and see this
    /// alert deleted. Only the first press counts.
    Q_INVOKABLE void press(int button);

private:
    struct Action {
        QString title;
        Handler handler;
    };

    QString message_;
    std::vector<Action> actions_;
    int cancelButton_ = -1;
    QRectF spinnerFrame_;
    bool pressed_ = false;
};

} // namespace dubrix
