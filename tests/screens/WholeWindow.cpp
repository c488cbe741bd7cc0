#include "tests/screens/WholeWindow.h"

#include "overlays/ProgressHUD.h"
#include "screens/InterfaceLayout.h"
#include "screens/containers/TemplateImageProvider.h"

#include <QQmlExtensionPlugin>

Q_IMPORT_QML_PLUGIN(DubrixPlugin)

namespace dubrix {

WholeWindow::WholeWindow() {
    ProgressHUD::useStage(stage);
    install("com.example.one", "One");
    choose("{bundleID = \"com.example.one\"; appName = One; customNameToggle = 1;"
           " customColorToggle = 1;}");
    information.setValueForKey("CFBundleVersion", PropertyList::string("57"));
    delegate.window.rootViewController =
        makeInterfaceLayout(platform, notifications, about, modals);
    root = delegate.window.rootViewController.get();
    delegate.applicationDidFinishLaunchingWithOptions();
    root->loadViewIfNeeded();
    engine->addImageProvider(QStringLiteral("template"), new TemplateImageProvider);
    open("qrc:/qt/qml/Dubrix/Main.qml", {{QStringLiteral("root"), QVariant::fromValue(root)},
                                         {QStringLiteral("stage"), QVariant::fromValue(&stage)}});
}

WholeWindow::~WholeWindow() {
    ProgressHUD::withdrawStage();
    engine.reset();
}

QQuickItem* WholeWindow::itemOf(const QString& name) const {
    QAccessibleInterface* element = find(name);
    EXPECT_TRUE(element) << name.toStdString();
    return element ? qobject_cast<QQuickItem*>(element->object()) : nullptr;
}

QPoint WholeWindow::placeOf(const QString& name) const {
    const QQuickItem* item = itemOf(name);
    return item ? item->mapRectToScene({0, 0, item->width(), item->height()}).center().toPoint()
                : QPoint();
}

bool WholeWindow::rested() const {
    for (const QQuickItem* layer : window->contentItem()->childItems())
        if (layer->property("presence").isValid() && layer->property("presence").toReal() < 1)
            return false;
    return true;
}

bool WholeWindow::settled() const {
    return QTest::qWaitFor([this] {
        return modals.rowCount() == (modals.topmost() ? 1 : 0) && (!modals.topmost() || rested());
    });
}

} // namespace dubrix
