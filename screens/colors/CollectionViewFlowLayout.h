#pragma once

#include <QMarginsF>
#include <QObject>
#include <QSizeF>
#include <algorithm>
#include <qqmlregistration.h>

namespace dubrix {

/// Cells in rows, from the left, as many to a row as fit; what is left over widens the gaps between
/// them. All lengths in points.
struct CollectionViewFlowLayout {
    Q_GADGET
    Q_PROPERTY(QSizeF itemSize MEMBER itemSize)
    Q_PROPERTY(double minimumLineSpacing MEMBER minimumLineSpacing)
    Q_PROPERTY(double minimumInteritemSpacing MEMBER minimumInteritemSpacing)
    Q_PROPERTY(double leftInset READ leftInset)
    Q_PROPERTY(double topInset READ topInset)
    Q_PROPERTY(double bottomInset READ bottomInset)
    QML_ANONYMOUS

public:
    QSizeF itemSize{50, 50};
    double minimumLineSpacing = 10;
    double minimumInteritemSpacing = 10;
    QMarginsF sectionInset{};

    /// How many cells stand in a row of a view this wide; at least one.
    Q_INVOKABLE int columnsIn(double width) const {
        const double pitch = itemSize.width() + minimumInteritemSpacing;
        return std::max(1, static_cast<int>((room(width) + minimumInteritemSpacing) / pitch));
    }
    /// The gap between the cells of a row in a view this wide, which the row then fills.
    Q_INVOKABLE double interitemSpacingIn(double width) const {
        const int columns = columnsIn(width);
        return columns == 1 ? minimumInteritemSpacing
                            : (room(width) - columns * itemSize.width()) / (columns - 1);
    }

private:
    double room(double width) const { return width - sectionInset.left() - sectionInset.right(); }
    double leftInset() const { return sectionInset.left(); }
    double topInset() const { return sectionInset.top(); }
    double bottomInset() const { return sectionInset.bottom(); }
};

} // namespace dubrix
