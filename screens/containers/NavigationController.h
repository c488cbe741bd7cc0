#pragma once

#include "screens/ViewController.h"

#include <QQmlListProperty>
#include <memory>
#include <vector>

namespace dubrix {

/// A stack of screens under one navigation bar; the topmost is shown.
class NavigationController : public dubrix::ViewController {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the application")
    /// From the root to the topmost.
    Q_PROPERTY(QQmlListProperty<dubrix::ViewController> viewControllers READ viewControllerList
                   NOTIFY viewControllersChanged)
    Q_PROPERTY(dubrix::ViewController* topViewController READ topViewController NOTIFY
                   viewControllersChanged)
    /// The title of the screen below the topmost, for the button that leads back; empty at the
    /// root.
    Q_PROPERTY(QString backTitle READ backTitle NOTIFY viewControllersChanged)
    Q_PROPERTY(bool canGoBack READ canGoBack NOTIFY viewControllersChanged)

public:
    explicit NavigationController(std::unique_ptr<ViewController> root);
    ~NavigationController() override;

    QString layout() const override { return QStringLiteral("NavigationView.qml"); }

    void pushViewController(std::unique_ptr<ViewController> screen);
    /// Back to the screen below; does nothing at the root. The popped screen is deleted.
    Q_INVOKABLE void popViewController();

    ViewController* topViewController() const { return viewControllers_.back().get(); }
    QString backTitle() const;
    bool canGoBack() const { return viewControllers_.size() > 1; }

Q_SIGNALS:
    void viewControllersChanged();

protected:
    void viewDidLoad() override;

private:
    QQmlListProperty<ViewController> viewControllerList();
    void adopt(ViewController& screen);

    std::vector<std::unique_ptr<ViewController>> viewControllers_;
};

} // namespace dubrix
