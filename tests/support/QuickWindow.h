#pragma once

#include "controls/ApplicationIconProvider.h"

#include <QAccessible>
#include <QQmlApplicationEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QTest>
#include <gtest/gtest.h>

namespace dubrix {

/// A window of ours under a keyboard and a screen reader. Elements found once can be pressed as
/// long as they live, whatever has become of them.
class QuickWindow {
protected:
    using Element = QAccessibleInterface;

    QuickWindow() {
        engine->addImportPath(QStringLiteral("qrc:/qt/qml"));
        const auto none = [](const std::string&, unsigned) { return std::optional<RgbaImage>(); };
        engine->addImageProvider(QLatin1String(ApplicationIconProvider::name),
                                 new ApplicationIconProvider(none));
    }

    void open(const char* layout, const QVariantMap& properties) {
        engine->setInitialProperties(properties);
        engine->load(QUrl(QLatin1String(layout)));
        window = qobject_cast<QQuickWindow*>(engine->rootObjects().value(0));
        ASSERT_TRUE(window && QTest::qWaitForWindowExposed(window));
        window->requestActivate();
    }

    /// The first element under this name that can be pressed; null when there is none.
    Element* find(const QString& name) const {
        return findIn(QAccessible::queryAccessibleInterface(window), name);
    }
    static void press(Element* element) {
        ASSERT_TRUE(element);
        element->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    }
    /// What has the keyboard.
    QString focused() const {
        Element* element = QAccessible::queryAccessibleInterface(window->activeFocusItem());
        return element ? element->text(QAccessible::Name) : QString();
    }
    void key(int code, Qt::KeyboardModifiers modifiers = {}) const {
        QTest::keyClick(window, static_cast<Qt::Key>(code), modifiers);
    }

    /// To be put away before what the window draws.
    std::unique_ptr<QQmlApplicationEngine> engine = std::make_unique<QQmlApplicationEngine>();
    QQuickWindow* window = nullptr;

private:
    static Element* findIn(Element* element, const QString& name) {
        if (!element || (element->actionInterface() && element->text(QAccessible::Name) == name))
            return element;
        for (int index = 0; index < element->childCount(); ++index)
            if (Element* found = findIn(element->child(index), name))
                return found;
        return nullptr;
    }
};

} // namespace dubrix
