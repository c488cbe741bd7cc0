#pragma once

#include <QQuickItem>

namespace dubrix {

/// A focus scope that may lie below others. While it is disabled, because something covers it or
/// nothing may be pressed, those who read the screen find none of its content: what Qt tells them
/// of an item does not include that it is disabled.
///
/// Who already knows an element of it may press that all the same, so a press from there still has
/// to look whether the element is enabled and visible.
class LayerScope : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT

public:
    explicit LayerScope(QQuickItem* parent = nullptr);
};

} // namespace dubrix
