#include "screens/colors/QZColorPickerViewController.h"

#include <QAccessible>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QQmlEngine>
#include <QQmlExtensionPlugin>
#include <QQuickItem>
#include <QQuickView>
#include <gtest/gtest.h>

Q_IMPORT_QML_PLUGIN(DubrixPlugin)

namespace dubrix {

namespace {

struct Delegate : QZColorPickerViewControllerDelegate {
    QString titleForColorPicker(QZColorPickerViewController&) override { return "Pick"; }
    void colorPickerDidSelectColor(QZColorPickerViewController&, const Color& color) override {
        picked = color;
    }
    void colorPiclerDidCancel(QZColorPickerViewController&) override {}
    std::optional<Color> picked;
};

} // namespace

/// The grid as it is drawn, 390 points wide: six swatches in a row.
struct ColorPickerViewTest : ::testing::Test {
    void SetUp() override {
        picker = QZColorPickerViewController::pickerWithDelegate(delegate);
        picker->setCurrentColor(QColor(255, 102, 0));
        picker->loadViewIfNeeded();
        view.engine()->addImportPath("qrc:/qt/qml");
        view.setInitialProperties({{"controller", QVariant::fromValue(picker.get())}});
        view.setResizeMode(QQuickView::SizeRootObjectToView);
        view.resize(390, 600);
        view.setSource(QUrl("qrc:/qt/qml/Dubrix/ColorPickerView.qml"));
        ASSERT_TRUE(view.rootObject());
        view.show();
        view.requestActivate();
        QCoreApplication::processEvents();
        view.rootObject()->forceActiveFocus();
    }
    void press(int key) {
        QKeyEvent down(QEvent::KeyPress, key, Qt::NoModifier);
        QCoreApplication::sendEvent(&view, &down);
    }
    QAccessibleInterface* focused() {
        return QAccessible::queryAccessibleInterface(view.activeFocusItem());
    }
    /// Whether the swatch with the focus lies within the window from top to bottom.
    bool focusedIsSeen() {
        const QQuickItem* item = view.activeFocusItem();
        const QRectF place = item->mapRectToScene({0, 0, item->width(), item->height()});
        return place.top() >= 0 && place.bottom() <= view.height();
    }

    Delegate delegate;
    std::unique_ptr<QZColorPickerViewController> picker;
    QQuickView view;
};

TEST_F(ColorPickerViewTest, IsUsedWithTheKeyboardAlone) {
    EXPECT_EQ(focused()->text(QAccessible::Name), "Red 255, green 102, blue 0");
    EXPECT_EQ(focused()->text(QAccessible::Description), "orange, current color");
    const std::vector<std::pair<std::vector<int>, std::size_t>> ways{
        {{Qt::Key_Home}, 0},
        {{Qt::Key_Left, Qt::Key_Up}, 0},
        {{Qt::Key_Right, Qt::Key_Right}, 2},
        {{Qt::Key_Down, Qt::Key_Down}, 14},
        {{Qt::Key_Up, Qt::Key_Left}, 7},
        {{Qt::Key_End}, 215},
        {{Qt::Key_Right, Qt::Key_Down}, 215},
        {{Qt::Key_Up}, 209}};
    bool space = false;
    for (const auto& [keys, item] : ways) {
        for (const int key : keys)
            press(key);
        EXPECT_TRUE(focusedIsSeen()) << item;
        delegate.picked.reset();
        press((space = !space) ? Qt::Key_Space : Qt::Key_Return);
        EXPECT_EQ(delegate.picked, picker->colors().at(item)) << item;
    }
}

TEST_F(ColorPickerViewTest, NamesEverySwatchAndMarksOne) {
    QSet<QString> names;
    int marked = 0;
    int tabStops = 0;
    for (QQuickItem* swatch : view.activeFocusItem()->parentItem()->childItems()) {
        const auto* element = QAccessible::queryAccessibleInterface(swatch);
        if (!element || element->role() != QAccessible::Button)
            continue;
        names.insert(element->text(QAccessible::Name));
        EXPECT_EQ(swatch->size(), QSizeF(50, 50));
        marked += element->state().selected;
        tabStops += swatch->activeFocusOnTab();
    }
    EXPECT_EQ(names.size(), 216);
    EXPECT_EQ(marked, 1);
    EXPECT_EQ(tabStops, 1);
}

} // namespace dubrix
