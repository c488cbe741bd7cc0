#pragma once

#include "screens/ViewController.h"
#include "screens/containers/ModalStack.h"

#include <QQmlListProperty>
#include <memory>
#include <vector>

namespace dubrix {

/// An image of the application's resources and how it is drawn.
struct TemplateImage {
    Q_GADGET
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(RenderingMode renderingMode MEMBER renderingMode)
    QML_ANONYMOUS

public:
    enum class RenderingMode { Automatic = 0, AlwaysOriginal = 1, AlwaysTemplate = 2 };
    Q_ENUM(RenderingMode)

    QString name;
    RenderingMode renderingMode = RenderingMode::Automatic;

    bool operator==(const TemplateImage&) const = default;
};

class TabBarItem : public QObject {
    Q_OBJECT
    QML_ANONYMOUS
    Q_PROPERTY(QString title MEMBER title CONSTANT)
    Q_PROPERTY(dubrix::TemplateImage image MEMBER image NOTIFY imagesChanged)
    Q_PROPERTY(dubrix::TemplateImage selectedImage MEMBER selectedImage NOTIFY imagesChanged)

public:
    using QObject::QObject;

    void setImage(const TemplateImage& newImage) {
        if (newImage != std::exchange(image, newImage))
            Q_EMIT imagesChanged();
    }
    void setSelectedImage(const TemplateImage& newImage) {
        if (newImage != std::exchange(selectedImage, newImage))
            Q_EMIT imagesChanged();
    }

    QString title;
    TemplateImage image;
    TemplateImage selectedImage;

Q_SIGNALS:
    void imagesChanged();
};

/// The root of the window: one screen a tab. A screen's view is loaded when its tab is first
/// selected.
class TabBarController : public dubrix::ViewController {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the application")
    Q_PROPERTY(
        int selectedIndex READ selectedIndex WRITE setSelectedIndex NOTIFY selectedIndexChanged)
    Q_PROPERTY(QQmlListProperty<dubrix::TabBarItem> items READ itemList CONSTANT)
    Q_PROPERTY(
        QQmlListProperty<dubrix::ViewController> viewControllers READ viewControllerList CONSTANT)
    Q_PROPERTY(dubrix::ModalStack* modals READ modals CONSTANT)
    Q_PROPERTY(bool tabBarHidden READ tabBarHidden NOTIFY tabBarHiddenChanged)

public:
    using ViewController::ViewController;

    QString layout() const override { return QStringLiteral("TabBarView.qml"); }

    /// Adds a tab with its title; its images are set through items().
    void addTab(std::unique_ptr<ViewController> screen, const QString& title,
                const TemplateImage& image, const TemplateImage& selectedImage);

    const std::vector<std::unique_ptr<TabBarItem>>& items() const { return items_; }

    /// The screen of the tab at `index`, which there must be.
    ViewController* viewControllerAt(int index) const {
        return viewControllers_.at(static_cast<std::size_t>(index)).get();
    }

    int selectedIndex() const { return selectedIndex_; }
    /// Ignored for an index without a tab.
    void setSelectedIndex(int index);

    /// Whether the selected tab's navigation shows a screen that wants the tab bar out of the way.
    bool tabBarHidden() const;

Q_SIGNALS:
    void selectedIndexChanged();
    void tabBarHiddenChanged();
    /// Keys that mean something on every tab ask for the instructions, or for an application.
    void helpAsked();
    void searchAsked();

protected:
    void viewDidLoad() override { setSelectedIndex(0); }

private:
    QQmlListProperty<TabBarItem> itemList();
    QQmlListProperty<ViewController> viewControllerList();
    ModalStack* modals() const { return modalStack(); }

    std::vector<std::unique_ptr<TabBarItem>> items_;
    std::vector<std::unique_ptr<ViewController>> viewControllers_;
    int selectedIndex_ = -1;
};

} // namespace dubrix
