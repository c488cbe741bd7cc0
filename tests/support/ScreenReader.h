#pragma once

#include <QAccessible>
#include <QQuickWindow>
#include <gtest/gtest.h>

namespace dubrix {

/// What a screen reader finds in a window and presses there. Elements found once can be pressed as
/// long as they live, whatever has become of them.
class ScreenReader {
public:
    using Element = QAccessibleInterface;

    explicit ScreenReader(QQuickWindow*& window) : window_(window) {}

    /// The first element under this name that can be pressed; null when there is none.
    Element* find(const QString& name) const {
        return findIn(QAccessible::queryAccessibleInterface(window_), name);
    }
    static void press(Element* element) {
        ASSERT_TRUE(element);
        element->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    }

private:
    static Element* findIn(Element* element, const QString& name) {
        if (!element || (element->actionInterface() && element->text(QAccessible::Name) == name))
            return element;
        for (int index = 0; index < element->childCount(); ++index)
            if (Element* found = findIn(element->child(index), name))
                return found;
        return nullptr;
    }

    QQuickWindow*& window_;
};

} // namespace dubrix
