#include "device/home/HomeScreen.h"
#include "device/home/Wallpaper.h"
#include "looks/ApplicationIconProvider.h"
#include "tests/device/DeviceFolder.h"
#include "tests/support/ScreenReader.h"

#include <QQmlApplicationEngine>
#include <QQmlExtensionPlugin>
#include <QQuickItem>
#include <QTest>

Q_IMPORT_QML_PLUGIN(DubrixHomePlugin)

namespace dubrix {

/// The home screen's window over a device with two applications. Nobody carries out its requests,
/// which it remarks on.
TEST(HomePress, WhatIsCoveredIsNeitherFoundNorPressed) {
    const DeviceFolder device;
    const Registry registry = device.registry();
    std::filesystem::create_directories(registry.hostPath(Registry::registryPath));
    for (const std::string name : {"One", "Two"}) {
        const std::string path = std::string(Registry::applicationPath) + "/" + name + "/It.app";
        putFile(registry.hostPath(path) / "Info.plist", "{CFBundleDisplayName = " + name + ";}");
        ASSERT_TRUE(static_cast<bool>(registry.enter("com.example." + name, path)));
    }

    HomeApplications applications(device.root());
    HomeScreen home(applications, nullptr, "/");
    home.reducedMotion = true;
    QQmlApplicationEngine engine;
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    engine.addImageProvider(QLatin1String(Wallpaper::name), new Wallpaper);
    engine.addImageProvider(QLatin1String(ApplicationIconProvider::name),
                            new ApplicationIconProvider([](const std::string&, unsigned) {
                                return std::optional<RgbaImage>();
                            }));
    engine.setInitialProperties({{QStringLiteral("home"), QVariant::fromValue(&home)}});
    engine.load(QUrl(QStringLiteral("qrc:/qt/qml/DubrixHome/HomeWindow.qml")));
    auto* window = qobject_cast<QQuickWindow*>(engine.rootObjects().value(0));
    ASSERT_TRUE(window && QTest::qWaitForWindowExposed(window));
    window->requestActivate();
    const ScreenReader reader(window);
    ASSERT_TRUE(QTest::qWaitFor([&] { return reader.find("One"); }));
    const auto remarkAfter = [&](ScreenReader::Element* pressed) {
        home.remarkPassed();
        ScreenReader::press(pressed);
        return home.remark();
    };

    ScreenReader::Element *const icon = reader.find("One"), *const dock = reader.find("Dubrix");
    home.remove("com.example.One"); // asks
    for (ScreenReader::Element* covered : {icon, dock})
        EXPECT_EQ(remarkAfter(covered), "");
    EXPECT_FALSE(reader.find("One") || reader.find("Dubrix"));
    ScreenReader::press(reader.find("Cancel"));
    EXPECT_FALSE(reader.find("Cancel")) << "leaving";
    EXPECT_NE(remarkAfter(icon), "");
    EXPECT_NE(remarkAfter(dock), "");

    // The menu of an icon, over which a failure is told.
    QTest::keyClick(window, Qt::Key_Right); // to the second icon
    QTest::keyClick(window, Qt::Key_Menu);
    ScreenReader::Element* const choice = reader.find("Export");
    ASSERT_TRUE(choice);
    EXPECT_FALSE(reader.find("One"));
    home.remove("com.example.One");
    EXPECT_EQ(remarkAfter(choice), "");
    EXPECT_FALSE(reader.find("Export"));
    home.alertDismissed();
    EXPECT_EQ(reader.find("Export"), choice);
    EXPECT_EQ(choice->object(), window->activeFocusItem()) << "the keyboard is back, too";
    EXPECT_NE(remarkAfter(choice), "");
}

} // namespace dubrix
