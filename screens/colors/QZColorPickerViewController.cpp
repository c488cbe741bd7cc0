#include "screens/colors/QZColorPickerViewController.h"

#include "screens/colors/ColorSpaces.h"

#include <algorithm>

namespace dubrix {

namespace {

constexpr double defaultPadding = 10;

} // namespace

std::unique_ptr<QZColorPickerViewController>
QZColorPickerViewController::pickerWithDelegate(QZColorPickerViewControllerDelegate& delegate) {
    auto picker = std::make_unique<QZColorPickerViewController>(CollectionViewFlowLayout{});
    picker->setDelegate(&delegate);
    return picker;
}

void QZColorPickerViewController::viewDidLoad() {
    ViewController::viewDidLoad();
    setTitle(delegate_ ? delegate_->titleForColorPicker(*this) : QString());
    const auto background =
        delegate_ ? delegate_->backgroundColorForColorPicker(*this) : std::nullopt;
    backgroundColor_ = background.value_or(QColor(Qt::white));
    setLeftBarButtonItem(SystemItem::Cancel, [this] { cancelTapped(); });
    const auto padding = delegate_ ? delegate_->paddingForColorPicker(*this) : std::nullopt;
    padding_ = padding.value_or(defaultPadding);
    if (collectionViewLayout_)
        collectionViewLayout_->sectionInset = {padding_, padding_, padding_, padding_};
}

std::vector<Color> QZColorPickerViewController::sortedColors() const {
    std::vector<Color> colors;
    for (int red = 0; red <= 255; red += 51)
        for (int green = 0; green <= 255; green += 51)
            for (int blue = 0; blue <= 255; blue += 51)
                colors.push_back({red / 255.0, green / 255.0, blue / 255.0, 1.0});
    std::ranges::stable_sort(colors, {}, hueSaturationBrightness);
    return colors;
}

const std::vector<Color>& QZColorPickerViewController::colors() const {
    if (colors_.empty())
        colors_ = sortedColors();
    return colors_;
}

int QZColorPickerViewController::currentItem() const {
    if (!currentColor_)
        return -1;
    const auto marked = std::ranges::find(colors(), currentColor_->rgb(),
                                          [](const Color& color) { return drawable(color).rgb(); });
    return marked == colors().end() ? -1 : static_cast<int>(marked - colors().begin());
}

CollectionViewFlowLayout QZColorPickerViewController::flowLayout() const {
    return collectionViewLayout_.value_or(
        CollectionViewFlowLayout{.sectionInset = {padding_, padding_, padding_, padding_}});
}

void QZColorPickerViewController::cancelTapped() {
    if (delegate_)
        delegate_->colorPiclerDidCancel(*this);
}

int QZColorPickerViewController::collectionViewNumberOfItemsInSection(int) const {
    return static_cast<int>(colors().size());
}

CollectionViewCell
QZColorPickerViewController::collectionViewCellForItemAtIndexPath(int, int item) const {
    return {cellIdentifier(), drawable(colors().at(static_cast<std::size_t>(item)))};
}

void QZColorPickerViewController::collectionViewDidSelectItemAtIndexPath(int, int item) {
    // The delegate may replace the colours.
    const Color picked = colors().at(static_cast<std::size_t>(item));
    if (delegate_)
        delegate_->colorPickerDidSelectColor(*this, picked);
}

} // namespace dubrix
