#include "formats/lists/PropertyList.h"
#include "screens/colors/ColorSpaces.h"
#include "screens/colors/ColorWords.h"
#include "screens/colors/FirstViewController.h"
#include "screens/colors/QZColorPickerViewController.h"
#include "screens/containers/NavigationController.h"
#include "screens/prefs/PrefsViewController.h"
#include "terminal/ColorNames.h"
#include "tests/screens/ScreenDevice.h"

namespace dubrix {

class ColorsTest : public ScreenDevice {
protected:
    template<typename Screen, typename... Rest>
    std::unique_ptr<Screen> loaded(Rest&... rest) {
        auto screen = std::make_unique<Screen>(platform, rest...);
        screen->setModalStack(&modals);
        screen->viewDidLayout(390, 700);
        screen->loadViewIfNeeded();
        log.lines.clear();
        return screen;
    }
    /// The picker on top of all; null when something else or nothing is there.
    QZColorPickerViewController* picker() const {
        const auto* navigation = qobject_cast<NavigationController*>(modals.topmost());
        return navigation
                   ? qobject_cast<QZColorPickerViewController*>(navigation->topViewController())
                   : nullptr;
    }
    void cancel() const {
        picker()->tapLeftBarButton();
        QCoreApplication::processEvents();
    }
};

TEST_F(ColorsTest, ThePickerSortsByHueThenSaturationThenBrightness) {
    const QZColorPickerViewController picker;
    const std::vector<Color>& colors = picker.colors();
    ASSERT_EQ(colors.size(), 216U);
    EXPECT_EQ(colors[20], (Color{1, 0, 0, 1}));
    EXPECT_EQ(hueSaturationBrightness({0.5, 0, 0.25, 1}),
              (HueSaturationBrightness{11 / 12.0, 1, 0.5}));
    const auto hue = [](const Color& color) { return std::max(0, drawable(color).hsvHue()); };
    const auto rest = [](const Color& color) {
        return std::pair(drawable(color).hsvSaturation(), drawable(color).value());
    };
    for (std::size_t i = 1; i < colors.size(); ++i)
        EXPECT_LE(hue(colors[i - 1]), hue(colors[i])) << "at " << i;
    for (std::size_t i = 1; i <= 20; ++i) // of one hue
        EXPECT_LT(rest(colors[i - 1]), rest(colors[i])) << "at " << i;
}

TEST_F(ColorsTest, TheMainScreenStoresThePickedColor) {
    choose("{customColorToggle = 1; Red = 1; Blue = \"0.2\"; other = kept;}");
    const auto screen = loaded<PrefsViewController>(notifications);
    screen->selectColorTapped();
    ASSERT_TRUE(picker());
    EXPECT_EQ(picker()->colors().at(static_cast<std::size_t>(picker()->currentItem())),
              (Color{1, 0, 51 / 255.0, 1}));
    EXPECT_EQ(picker()->collectionViewLayout()->sectionInset, QMarginsF(10, 10, 10, 10));
    picker()->setColors({{0.2, 0.4, 0.6, 0.5}, {1, 0, 0, 1}});
    EXPECT_EQ(picker()->currentItem(), -1);
    std::size_t linesBeforeSwatch = 0;
    QObject::connect(&screen->colorView, &TableViewCell::backgroundColorChanged,
                     [&] { linesBeforeSwatch = log.lines.size(); });
    picker()->collectionViewDidSelectItemAtIndexPath(0, 0);
    EXPECT_EQ(log.lines.at(0) + log.lines.at(1),
              "Color Selected\n red 0.200000 \n blue 0.600000 \n green 0.400000");
    EXPECT_EQ(linesBeforeSwatch, log.lines.size()) << "stored before it is shown";
    EXPECT_EQ(screen->colorView.backgroundColor().rgb(), qRgb(51, 102, 153));
    EXPECT_FALSE(modals.occupied());

    screen->selectColorTapped();
    cancel();
    EXPECT_FALSE(modals.occupied());
    screen->colorSwitchChanged(false);
    for (const auto& [key, value] : {std::pair{"Red", 0.2F}, {"Green", 0.4F}, {"Blue", 0.6F}})
        EXPECT_EQ(DXShared(files, log).retrieveValueForKey(key), PropertyList::real(value))
            << "kept for another time";
    EXPECT_EQ(stored("other"), "kept");
}

/// A delegate that has the test screen's answers and looks of its own.
struct Looks : FirstViewController {
    using FirstViewController::FirstViewController;
    std::optional<QColor> backgroundColorForColorPicker(QZColorPickerViewController&) override {
        return QColor(1, 2, 3);
    }
    std::optional<double> paddingForColorPicker(QZColorPickerViewController&) override {
        return 0.0;
    }
};

TEST_F(ColorsTest, APickerIsAsItsDelegateWantsIt) {
    const auto screen = loaded<Looks>();
    EXPECT_EQ(screen->copyButton()->frame, QRectF(-1305, 230, 3000, 40)) << "beyond both edges";
    screen->selectColorTapped(); // without a delegate
    EXPECT_TRUE(modals.data(modals.index(0), ModalStack::AnimatedRole).toBool());
    cancel();
    picker()->collectionViewDidSelectItemAtIndexPath(0, 20);
    EXPECT_FALSE(picker()->collectionViewLayout());
    EXPECT_EQ(picker()->backgroundColor(), QColor(Qt::white));
    EXPECT_EQ(screen->copyButton()->backgroundColor(), QColor(247, 247, 247));
    modals.topmost()->dismissBySystem();
    for (const bool picks : {true, false}) {
        auto own = QZColorPickerViewController::pickerWithDelegate(*screen);
        screen->presentViewController(std::make_unique<NavigationController>(std::move(own)), true);
        EXPECT_EQ(picker()->title(), "Select color");
        EXPECT_EQ(picker()->backgroundColor(), QColor(1, 2, 3));
        EXPECT_EQ(picker()->collectionViewLayout()->sectionInset, QMarginsF());
        picks ? picker()->collectionViewDidSelectItemAtIndexPath(0, 20) : cancel();
        EXPECT_FALSE(modals.occupied());
        EXPECT_EQ(screen->copyButton()->backgroundColor(), QColor(255, 0, 0));
    }
    screen->showAlert();
    press("GO");
    EXPECT_FALSE(modals.occupied());
    EXPECT_FALSE(files.fileExistsAtPath(settingsFilePath));
}

TEST(ColorWords, SayAColor) {
    for (const auto& [color, name] : {std::pair{QColor(255, 102, 0), "orange"},
                                      {{0, 0, 0}, "black"},
                                      {{51, 51, 51}, "dark gray"},
                                      {{153, 153, 153}, "gray"},
                                      {{204, 204, 204}, "light gray"},
                                      {{255, 255, 255}, "white"},
                                      {{255, 0, 51}, "red"},
                                      {{51, 0, 0}, "very dark red"},
                                      {{102, 0, 153}, "dark violet"},
                                      {{204, 255, 255}, "pale cyan"},
                                      {{102, 153, 153}, "grayish cyan"},
                                      {{102, 102, 255}, "light blue"}})
        EXPECT_EQ(ColorWords::nameOf(color), name);
    EXPECT_EQ(ColorWords::componentsOf({102, 0, 153}), "Red 102, green 0, blue 153");
}

TEST(ColorNames, AreQts) {
    for (const auto& [name, color] : colorNames)
        EXPECT_TRUE(QColor(name.data()).rgb() == (color | 0xff000000) || name == "rebeccapurple")
            << name;
}

} // namespace dubrix
