#pragma once

#include <QObject>
#include <QSizeF>
#include <QString>
#include <memory>
#include <qqmlregistration.h>

namespace dubrix {

class ModalStack;

/// One screen: its state and its decisions. The interface layout draws it.
class ViewController : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the application")
    /// The layout file that draws the screen.
    Q_PROPERTY(QString layout READ layout CONSTANT)
    Q_PROPERTY(QString title READ title NOTIFY titleChanged)

public:
    using QObject::QObject;

    virtual QString layout() const = 0;

    QString title() const { return title_; }
    void setTitle(const QString& title);

    /// Runs `viewDidLoad` the first time it is called.
    void loadViewIfNeeded();
    bool isViewLoaded() const { return viewLoaded_; }

    /// Where this screen's modal screens go; one stack serves a whole window.
    void setModalStack(ModalStack* stack) { modalStack_ = stack; }
    ModalStack* modalStack() const { return modalStack_; }

    /// Presents a screen modally over everything shown so far and takes ownership of it.
    void presentViewController(std::unique_ptr<ViewController> modal, bool animated);
    /// Dismisses the topmost modal screen that this screen has presented, or this screen itself
    /// when it has presented none.
    void dismissViewController(bool animated);

    /// The screen is about to be seen again because what covered it is being dismissed.
    virtual void viewWillAppear() {}
    /// Whether this screen, presented modally, hides the one below it.
    virtual bool coversPresenter() const { return true; }

    /// The size of the screen's view in points, as the layout tells it; empty without a view.
    QSizeF viewSize() const { return viewSize_; }
    Q_INVOKABLE void viewDidLayout(double width, double height) { viewSize_ = {width, height}; }

Q_SIGNALS:
    void titleChanged();

protected:
    virtual void viewDidLoad() {}

private:
    QString title_;
    QSizeF viewSize_{0, 0};
    ModalStack* modalStack_ = nullptr;
    bool viewLoaded_ = false;
};

} // namespace dubrix
