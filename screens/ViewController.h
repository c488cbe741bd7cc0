#pragma once

#include <QObject>
#include <QSizeF>
#include <QString>
#include <functional>
#include <memory>
#include <qqmlregistration.h>

namespace dubrix {

class ModalStack;
class NavigationController;

/// One screen: its state and its decisions. The interface layout draws it.
class ViewController : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the application")
    /// The layout file that draws the screen.
    Q_PROPERTY(QString layout READ layout CONSTANT)
    /// The layout file that holds the screen when it is presented modally.
    Q_PROPERTY(QString modalLayout READ modalLayout CONSTANT)
    Q_PROPERTY(QString title READ title NOTIFY titleChanged)
    /// The text of the button at the left of the navigation bar; empty without one.
    Q_PROPERTY(QString leftBarButton READ leftBarButton NOTIFY leftBarButtonChanged)

public:
    using QObject::QObject;

    virtual QString layout() const = 0;
    virtual QString modalLayout() const { return QStringLiteral("ModalSheet.qml"); }

    QString title() const { return title_; }
    void setTitle(const QString& title);

    /// Runs `viewDidLoad` the first time it is called.
    void loadViewIfNeeded();
    bool isViewLoaded() const { return viewLoaded_; }

    /// Where this screen's modal screens go; one stack serves a whole window.
    void setModalStack(ModalStack* stack) { modalStack_ = stack; }
    ModalStack* modalStack() const { return modalStack_; }

    /// The buttons that the system names and draws.
    enum class SystemItem { Cancel = 1 };
    void setLeftBarButtonItem(SystemItem item, std::function<void()> action);
    QString leftBarButton() const { return leftBarButton_; }
    /// Runs the button's action from the event loop.
    Q_INVOKABLE void tapLeftBarButton();

    /// The navigation controller that this screen stands in; null when it is in none.
    NavigationController* navigationController() const { return navigationController_; }
    void setNavigationController(NavigationController* navigation);
    /// Whether the tab bar makes room while the screen is pushed.
    bool hidesBottomBarWhenPushed() const { return hidesBottomBar_; }
    void setHidesBottomBarWhenPushed(bool hides) { hidesBottomBar_ = hides; }

    /// Presents a screen modally over everything shown so far and takes ownership of it.
    void presentViewController(std::unique_ptr<ViewController> modal, bool animated);
    /// Dismisses the topmost modal screen that this screen has presented, or, when it has presented
    /// none, the modal screen that it is or stands in.
    void dismissViewController(bool animated);
    /// The window system's own way out of a modal screen.
    Q_INVOKABLE void dismissBySystem();

    /// The screen is about to be seen again because what covered it is being dismissed.
    virtual void viewWillAppear() {}
    /// Whether this screen, presented modally, hides the one below it.
    virtual bool coversPresenter() const { return true; }

    /// The size of the screen's view in points, as the layout tells it; empty without a view.
    QSizeF viewSize() const { return viewSize_; }
    Q_INVOKABLE void viewDidLayout(double width, double height) { viewSize_ = {width, height}; }

Q_SIGNALS:
    void titleChanged();
    void leftBarButtonChanged();

protected:
    virtual void viewDidLoad() {}

private:
    QString title_;
    QString leftBarButton_;
    std::function<void()> leftBarButtonAction_;
    NavigationController* navigationController_ = nullptr;
    bool hidesBottomBar_ = false;
    QSizeF viewSize_{0, 0};
    ModalStack* modalStack_ = nullptr;
    bool viewLoaded_ = false;
};

} // namespace dubrix
