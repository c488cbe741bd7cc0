#include "tests/screens/WholeWindow.h"

#include "controls/ApplicationIconProvider.h"
#include "formats/lists/PropertyList.h"
#include "overlays/ProgressHUD.h"
#include "screens/InterfaceLayout.h"
#include "screens/containers/TemplateImageProvider.h"

#include <QQmlExtensionPlugin>

Q_IMPORT_QML_PLUGIN(DubrixPlugin)

namespace dubrix {

WholeWindow::WholeWindow()
    : information(std::make_unique<const PropertyList>(PropertyList::dictionary())) {
    ProgressHUD::useStage(stage);
    install("com.example.one", "One");
    choose("{bundleID = \"com.example.one\"; appName = One; customNameToggle = 1;"
           " customColorToggle = 1;}");
    delegate.window.rootViewController =
        makeInterfaceLayout(platform, notifications, about, modals);
    root = delegate.window.rootViewController.get();
    delegate.applicationDidFinishLaunchingWithOptions();
    root->loadViewIfNeeded();
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    engine.addImageProvider(QStringLiteral("template"), new TemplateImageProvider);
    engine.addImageProvider(QLatin1String(ApplicationIconProvider::name),
                            new ApplicationIconProvider([](const std::string&, unsigned) {
                                return std::optional<RgbaImage>();
                            }));
    engine.setInitialProperties({{QStringLiteral("root"), QVariant::fromValue(root)},
                                 {QStringLiteral("stage"), QVariant::fromValue(&stage)}});
    engine.load(QUrl(QStringLiteral("qrc:/qt/qml/Dubrix/Main.qml")));
    window = qobject_cast<QQuickWindow*>(engine.rootObjects().value(0));
    if (window && QTest::qWaitForWindowExposed(window))
        window->requestActivate();
}

WholeWindow::~WholeWindow() {
    ProgressHUD::withdrawStage();
}

QQuickItem* WholeWindow::itemOf(const QString& name) const {
    QAccessibleInterface* element = find(name);
    EXPECT_TRUE(element) << name.toStdString();
    return element ? qobject_cast<QQuickItem*>(element->object()) : nullptr;
}

QString WholeWindow::focused() const {
    QAccessibleInterface* element =
        QAccessible::queryAccessibleInterface(window->activeFocusItem());
    return element ? element->text(QAccessible::Name) : QString();
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
