#include "looks/ApplicationIconProvider.h"
#include "overlays/ProgressHUD.h"
#include "platform/HelpPages.h"
#include "platform/UrlOpener.h"
#include "screens/AboutTableViewController.h"
#include "screens/InterfaceLayout.h"
#include "screens/PrefsViewController.h"
#include "screens/QuickOverlayStage.h"
#include "screens/TabBarController.h"
#include "screens/TemplateImageProvider.h"
#include "tests/screens/PickerDevice.h"

#include <QAccessible>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQmlExtensionPlugin>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSet>
#include <QTest>

Q_IMPORT_QML_PLUGIN(DubrixPlugin)

namespace dubrix {

namespace {

struct NoPages final : HelpPages, UrlOpener {
    std::string siteAddress() override { return {}; }
    bool canOpenURL(const std::string&) const override { return false; }
    void openURL(const std::string&) override {}
};

/// Everything below `item` that the Tab key is meant to reach now.
void collectTabStops(QQuickItem* item, QSet<QQuickItem*>& stops) {
    if (!item->isVisible() || !item->isEnabled())
        return;
    if (item->activeFocusOnTab())
        stops.insert(item);
    for (QQuickItem* child : item->childItems())
        collectTabStops(child, stops);
}

} // namespace

/// The whole window over a real device, as a person at the keyboard or with a screen reader has it.
class AccessibilityTest : public PickerDevice {
protected:
    AccessibilityTest() {
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
    ~AccessibilityTest() override { ProgressHUD::withdrawStage(); }

    /// Every Tab stop has a name and a role for a screen reader, and the Tab key comes by all.
    void expectReachableAndNamed(int atLeast) const {
        ASSERT_TRUE(window);
        QTest::qWait(2 * ModalStack::transitionTime); // until what slides in has arrived
        QSet<QQuickItem*> stops;
        collectTabStops(window->contentItem(), stops);
        EXPECT_GE(stops.size(), atLeast);
        for (QQuickItem* stop : stops) {
            QAccessibleInterface* element = QAccessible::queryAccessibleInterface(stop);
            ASSERT_TRUE(element) << stop->metaObject()->className();
            EXPECT_NE(element->text(QAccessible::Name), "") << stop->metaObject()->className();
            EXPECT_NE(element->role(), QAccessible::NoRole) << stop->metaObject()->className();
        }
        for (qsizetype press = stops.size() + 1; press > 0; --press) {
            QTest::keyClick(window, Qt::Key_Tab);
            stops.remove(window->activeFocusItem());
        }
        for (const QQuickItem* missed : stops)
            ADD_FAILURE() << "Tab does not reach " << missed->metaObject()->className();
    }

    NoPages pages;
    const AboutServices about{log, pages, pages, PropertyList::dictionary()};
    QuickOverlayStage stage;
    std::unique_ptr<TabBarController> root;
    QQmlApplicationEngine engine;
    QQuickWindow* window = nullptr;
};

TEST_F(AccessibilityTest, EveryScreenIsReachableAndNamed) {
    auto* prefs = static_cast<PrefsViewController*>(root->viewControllerAt(0));
    for (const int tab : {0, 1, 2}) {
        SCOPED_TRACE("tab " + std::to_string(tab));
        root->setSelectedIndex(tab);
        expectReachableAndNamed(tab == 2 ? 4 : 8);
    }
    root->setSelectedIndex(0);
    const struct {
        int section;
        int row;
        int stops;
    } modalRows[] = {{0, 0, 3}, {2, 1, 2}, {3, 0, 2}};
    for (const auto& modal : modalRows) {
        SCOPED_TRACE("row of section " + std::to_string(modal.section));
        prefs->tableViewDidSelectRowAtIndexPath(modal.section, modal.row);
        ASSERT_TRUE(modals.topmost());
        expectReachableAndNamed(modal.stops);
        modals.dismiss(*modals.topmost(), false);
        QCoreApplication::processEvents();
    }
}

} // namespace dubrix
