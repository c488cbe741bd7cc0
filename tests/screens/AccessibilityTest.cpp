#include "tests/screens/WholeWindow.h"

#include <QQmlExtensionPlugin>
#include <QQuickItem>
#include <QSet>

Q_IMPORT_QML_PLUGIN(DubrixPlugin)

namespace dubrix {

namespace {

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

/// The whole window as a person at the keyboard or with a screen reader has it.
class AccessibilityTest : public WholeWindow {
protected:
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
            // Within a list, a row of it has the keyboard.
            for (QQuickItem* item = window->activeFocusItem(); item; item = item->parentItem())
                stops.remove(item);
        }
        for (const QQuickItem* missed : stops)
            ADD_FAILURE() << "Tab does not reach " << missed->metaObject()->className();
    }
};

TEST_F(AccessibilityTest, EveryScreenIsReachableAndNamed) {
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
        prefs().tableViewDidSelectRowAtIndexPath(modal.section, modal.row);
        ASSERT_TRUE(modals.topmost());
        expectReachableAndNamed(modal.stops);
        modals.dismiss(*modals.topmost(), false);
        QCoreApplication::processEvents();
    }
}

} // namespace dubrix
