#include "screens/colors/ColorWords.h"
#include "screens/colors/QZColorPickerViewController.h"

#include <array>
#include <cmath>
#include <gtest/gtest.h>
#include <ranges>
#include <tuple>

namespace dubrix {

namespace {

using Bytes = std::array<int, 3>;

Bytes bytesOf(const Color& color) {
    const auto byte = [](double component) {
        return static_cast<int>(std::lround(component * 255));
    };
    return {byte(color.red), byte(color.green), byte(color.blue)};
}

/// Hue, saturation and brightness by the textbook, with a remainder for what lies before red.
std::tuple<double, double, double> textbook(const Bytes& bytes) {
    const auto [r, g, b] = std::tuple(bytes[0] / 255.0, bytes[1] / 255.0, bytes[2] / 255.0);
    const double most = std::max(r, std::max(g, b));
    const double range = most - std::min(r, std::min(g, b));
    double hue = 0;
    if (range != 0 && most == r)
        hue = std::fmod((g - b) / range + 6 * (g < b), 6);
    else if (range != 0)
        hue = most == g ? 2 + (b - r) / range : 4 + (r - g) / range;
    return {hue / 6, most == 0 ? 0 : range / most, most};
}

} // namespace

TEST(ColorPicker, SortsItsColorsByHueThenSaturationThenBrightness) {
    QZColorPickerViewController picker;
    std::vector<Bytes> shown;
    for (const Color& color : picker.colors()) {
        shown.push_back(bytesOf(color));
        EXPECT_EQ(color.red, shown.back()[0] / 255.0);
        EXPECT_EQ(color.alpha, 1.0);
    }
    ASSERT_EQ(shown.size(), 216U);
    EXPECT_EQ(picker.collectionViewNumberOfItemsInSection(0), 216);
    EXPECT_EQ(picker.numberOfSectionsInCollectionView(), 1);

    const std::vector<Bytes> first{
        {0, 0, 0},       {51, 51, 51},    {102, 102, 102}, {153, 153, 153}, {204, 204, 204},
        {255, 255, 255}, {255, 204, 204}, {204, 153, 153}, {153, 102, 102}, {255, 153, 153},
        {102, 51, 51},   {204, 102, 102}, {255, 102, 102}, {153, 51, 51},   {204, 51, 51},
        {255, 51, 51},   {51, 0, 0},      {102, 0, 0},     {153, 0, 0},     {204, 0, 0},
        {255, 0, 0}};
    EXPECT_TRUE(std::ranges::equal(first, shown | std::views::take(first.size())));

    for (std::size_t i = 1; i < shown.size(); ++i)
        EXPECT_LT(textbook(shown[i - 1]), textbook(shown[i])) << "at " << i;
}

TEST(ColorPicker, FillsItsRowsFromEdgeToEdge) {
    QZColorPickerViewController picker(CollectionViewFlowLayout{});
    picker.loadViewIfNeeded();
    const CollectionViewFlowLayout layout = picker.collectionViewLayout().value();
    EXPECT_EQ(layout.itemSize, QSizeF(50, 50));
    EXPECT_EQ(layout.minimumLineSpacing, 10);
    const std::vector<std::tuple<double, int, double>> widths{
        {320, 5, 12.5}, {390, 6, 14}, {130, 2, 10}, {129.5, 1, 10}, {30, 1, 10}, {560, 9, 11.25}};
    for (const auto& [width, columns, spacing] : widths) {
        EXPECT_EQ(layout.columnsIn(width), columns) << width;
        EXPECT_DOUBLE_EQ(layout.interitemSpacingIn(width), spacing) << width;
    }
}

namespace {

struct PlainDelegate : QZColorPickerViewControllerDelegate {
    QString titleForColorPicker(QZColorPickerViewController&) override { return "Pick"; }
    void colorPickerDidSelectColor(QZColorPickerViewController& picker,
                                   const Color& color) override {
        told.emplace_back(&picker, bytesOf(color));
    }
    void colorPiclerDidCancel(QZColorPickerViewController& picker) override {
        told.emplace_back(&picker, Bytes{-1, -1, -1});
    }
    std::vector<std::pair<QZColorPickerViewController*, Bytes>> told;
};

struct FullDelegate : PlainDelegate {
    std::optional<QColor> backgroundColorForColorPicker(QZColorPickerViewController&) override {
        return QColor(1, 2, 3);
    }
    std::optional<double> paddingForColorPicker(QZColorPickerViewController&) override {
        return 0.0;
    }
};

} // namespace

TEST(ColorPicker, AsksItsDelegateForItsLooks) {
    PlainDelegate plain;
    FullDelegate full;
    struct Case {
        QZColorPickerViewControllerDelegate* delegate;
        QString title;
        QColor background;
        double padding;
    };
    for (const Case& expected :
         {Case{&plain, "Pick", Qt::white, 10}, Case{&full, "Pick", QColor(1, 2, 3), 0},
          Case{nullptr, "", Qt::white, 10}}) {
        QZColorPickerViewController picker(CollectionViewFlowLayout{});
        picker.setDelegate(expected.delegate);
        picker.loadViewIfNeeded();
        EXPECT_EQ(picker.title(), expected.title);
        EXPECT_EQ(picker.backgroundColor(), expected.background);
        EXPECT_EQ(picker.leftBarButton(), "Cancel");
        const double padding = expected.padding;
        EXPECT_EQ(picker.collectionViewLayout()->sectionInset,
                  QMarginsF(padding, padding, padding, padding));
    }
}

TEST(ColorPicker, TellsItsDelegateWhatWasPickedOrThatNothingWas) {
    PlainDelegate delegate;
    const auto picker = QZColorPickerViewController::pickerWithDelegate(delegate);
    ASSERT_TRUE(picker->collectionViewLayout());
    picker->loadViewIfNeeded();
    picker->collectionViewDidSelectItemAtIndexPath(0, 5);
    picker->setColors({{0.2, 0.4, 0.6, 1}});
    picker->collectionViewDidSelectItemAtIndexPath(0, 0);
    EXPECT_EQ(picker->collectionViewCellForItemAtIndexPath(0, 0).backgroundColor,
              QColor(51, 102, 153));
    picker->cancelTapped();
    const decltype(delegate.told) told{{picker.get(), {255, 255, 255}},
                                       {picker.get(), {51, 102, 153}},
                                       {picker.get(), {-1, -1, -1}}};
    EXPECT_EQ(delegate.told, told);
}

TEST(ColorWords, SayAColor) {
    const std::vector<std::tuple<QColor, QString, QString>> colors{
        {{255, 102, 0}, "orange", "Red 255, green 102, blue 0"},
        {{0, 0, 0}, "black", "Red 0, green 0, blue 0"},
        {{255, 255, 255}, "white", "Red 255, green 255, blue 255"},
        {{51, 51, 51}, "dark gray", "Red 51, green 51, blue 51"},
        {{255, 0, 51}, "red", "Red 255, green 0, blue 51"},
        {{51, 0, 0}, "very dark red", "Red 51, green 0, blue 0"},
        {{102, 0, 153}, "dark violet", "Red 102, green 0, blue 153"},
        {{204, 255, 255}, "pale cyan", "Red 204, green 255, blue 255"},
        {{102, 153, 153}, "grayish cyan", "Red 102, green 153, blue 153"},
        {{102, 102, 255}, "light blue", "Red 102, green 102, blue 255"}};
    for (const auto& [color, name, components] : colors) {
        EXPECT_EQ(ColorWords::nameOf(color), name) << components.toStdString();
        EXPECT_EQ(ColorWords::componentsOf(color), components);
    }
}

} // namespace dubrix
