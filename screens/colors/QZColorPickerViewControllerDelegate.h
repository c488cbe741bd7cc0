#pragma once

#include <QColor>
#include <QString>
#include <optional>

namespace dubrix {

class QZColorPickerViewController;
struct Color;

/// Whoever wants a colour from the picker. It presents the picker and dismisses it, in both the
/// select and the cancel case: the picker never dismisses itself.
class QZColorPickerViewControllerDelegate {
public:
    virtual ~QZColorPickerViewControllerDelegate() = default;

    virtual QString titleForColorPicker(QZColorPickerViewController& colorPicker) = 0;
    virtual void colorPickerDidSelectColor(QZColorPickerViewController& colorPicker,
                                           const Color& didSelectColor) = 0;
    virtual void colorPiclerDidCancel(QZColorPickerViewController& colorPicker) = 0;

    /// The ground of the grid; the picker's own, white, for a delegate that does not say.
    virtual std::optional<QColor> backgroundColorForColorPicker(QZColorPickerViewController&) {
        return std::nullopt;
    }
    /// The space around the grid in points; the picker's own, 10, for a delegate that does not say.
    virtual std::optional<double> paddingForColorPicker(QZColorPickerViewController&) {
        return std::nullopt;
    }
};

} // namespace dubrix
