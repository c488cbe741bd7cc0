#include "tests/screens/WholeWindow.h"

#include "controls/ApplicationIconProvider.h"
#include "formats/lists/PropertyList.h"
#include "overlays/ProgressHUD.h"
#include "screens/InterfaceLayout.h"
#include "screens/containers/TemplateImageProvider.h"

namespace dubrix {

WholeWindow::WholeWindow()
    : information(std::make_unique<const PropertyList>(PropertyList::dictionary())) {
    ProgressHUD::useStage(stage);
    install("com.example.one", "One");
    putFile(folder / "var/mobile/Library/Preferences/com.q7r2m.dubrix2.plist",
            "{bundleID = \"com.example.one\"; appName = One; customNameToggle = 1;"
            " customColorToggle = 1;}");
    root = makeInterfaceLayout(platform, notifications, about, modals);
    root->loadViewIfNeeded();
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    engine.addImageProvider(QStringLiteral("template"), new TemplateImageProvider);
    engine.addImageProvider(QLatin1String(ApplicationIconProvider::name),
                            new ApplicationIconProvider([](const std::string&, unsigned) {
                                return std::optional<RgbaImage>();
                            }));
    engine.setInitialProperties({{QStringLiteral("root"), QVariant::fromValue(root.get())},
                                 {QStringLiteral("stage"), QVariant::fromValue(&stage)}});
    engine.load(QUrl(QStringLiteral("qrc:/qt/qml/Dubrix/Main.qml")));
    window = qobject_cast<QQuickWindow*>(engine.rootObjects().value(0));
    if (window && QTest::qWaitForWindowExposed(window))
        window->requestActivate();
}

WholeWindow::~WholeWindow() {
    ProgressHUD::withdrawStage();
}

} // namespace dubrix
