#pragma once

#include "overlays/Color.h"
#include "screens/ViewController.h"
#include "screens/colors/CollectionViewFlowLayout.h"
#include "screens/colors/QZColorPickerViewControllerDelegate.h"

#include <memory>
#include <optional>
#include <vector>

namespace dubrix {

/// What the layout draws at one place of a collection view.
struct CollectionViewCell {
    Q_GADGET
    Q_PROPERTY(QString reuseIdentifier MEMBER reuseIdentifier)
    Q_PROPERTY(QColor backgroundColor MEMBER backgroundColor)
    QML_ANONYMOUS

public:
    QString reuseIdentifier{};
    QColor backgroundColor{};
};

/// A grid of 216 swatches to pick a colour from. It knows nothing of what the colour is for: it
/// tells its delegate what was picked, or that nothing was.
class QZColorPickerViewController : public ViewController {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the application")
    Q_PROPERTY(QColor backgroundColor READ backgroundColor CONSTANT)
    Q_PROPERTY(dubrix::CollectionViewFlowLayout flowLayout READ flowLayout CONSTANT)
    Q_PROPERTY(int currentItem READ currentItem CONSTANT)

public:
    /// A picker over a flow layout with default settings. `delegate` is not owned and outlives it.
    static std::unique_ptr<QZColorPickerViewController>
    pickerWithDelegate(QZColorPickerViewControllerDelegate& delegate);

    /// A picker without a layout and a delegate: what is picked in it reaches nobody.
    QZColorPickerViewController() = default;
    explicit QZColorPickerViewController(const CollectionViewFlowLayout& collectionViewLayout)
        : collectionViewLayout_(collectionViewLayout) {}

    QString layout() const override { return QStringLiteral("ColorPickerView.qml"); }
    static QString cellIdentifier() { return QStringLiteral("ColorCell"); }

    /// Red, green and blue in six even steps each, by hue, then saturation, then brightness.
    std::vector<Color> sortedColors() const;
    /// What the grid shows, in order: the sorted colours unless others have been set.
    const std::vector<Color>& colors() const;
    void setColors(std::vector<Color> colors) { colors_ = std::move(colors); }

    QZColorPickerViewControllerDelegate* delegate() const { return delegate_; }
    void setDelegate(QZColorPickerViewControllerDelegate* delegate) { delegate_ = delegate; }

    /// Marks the swatch of this colour, to eight bits a component, as the one in use.
    void setCurrentColor(const QColor& color) { currentColor_ = color; }
    /// The marked swatch; -1 when there is none.
    int currentItem() const;

    QColor backgroundColor() const { return backgroundColor_; }
    /// The layout given at the start; nothing for a picker made without one.
    const std::optional<CollectionViewFlowLayout>& collectionViewLayout() const {
        return collectionViewLayout_;
    }

    void cancelTapped();

    Q_INVOKABLE int numberOfSectionsInCollectionView() const { return 1; }
    Q_INVOKABLE int collectionViewNumberOfItemsInSection(int section) const;
    /// For an item of colors().
    Q_INVOKABLE dubrix::CollectionViewCell collectionViewCellForItemAtIndexPath(int section,
                                                                                int item) const;
    Q_INVOKABLE void collectionViewDidSelectItemAtIndexPath(int section, int item);

    /// For the delegate's use; the picker does not read it.
    double cellPadding = 0;

protected:
    void viewDidLoad() override;

private:
    /// What the grid is drawn by. Without a layout of its own it looks as it does with one.
    CollectionViewFlowLayout flowLayout() const;

    mutable std::vector<Color> colors_;
    QZColorPickerViewControllerDelegate* delegate_ = nullptr;
    std::optional<CollectionViewFlowLayout> collectionViewLayout_;
    QColor backgroundColor_;
    double padding_ = 0;
    std::optional<QColor> currentColor_;
};

} // namespace dubrix
