#include "controls/LayerScope.h"

#include <QAccessible>
#include <QAccessibleObject>
#include <QQuickWindow>

namespace dubrix {

namespace {

/// What a disabled layer is to those who read the screen.
class ClosedLayer final : public QAccessibleObject {
public:
    explicit ClosedLayer(LayerScope* layer) : QAccessibleObject(layer), layer_(layer) {}

    int childCount() const override { return 0; }
    QAccessibleInterface* child(int) const override { return nullptr; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    QAccessibleInterface* parent() const override {
        return QAccessible::queryAccessibleInterface(layer_->window());
    }
    QString text(QAccessible::Text) const override { return {}; }
    QAccessible::Role role() const override { return QAccessible::LayeredPane; }
    QAccessible::State state() const override {
        QAccessible::State state;
        state.disabled = true;
        return state;
    }

private:
    LayerScope* layer_;
};

/// Leaves an enabled layer to Qt.
QAccessibleInterface* closedLayer(const QString& className, QObject* object) {
    auto* layer = qobject_cast<LayerScope*>(object);
    return layer && !layer->isEnabled() &&
                   className == QLatin1String(LayerScope::staticMetaObject.className())
               ? new ClosedLayer(layer)
               : nullptr;
}

/// Has the layer's interface made anew, as the layer is by then.
void forgetInterface(LayerScope* layer) {
    if (QAccessibleInterface* known = QAccessible::queryAccessibleInterface(layer))
        QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(known));
    QAccessible::State changed;
    changed.disabled = true;
    QAccessibleStateChangeEvent event(layer, changed);
    QAccessible::updateAccessibility(&event);
}

} // namespace

LayerScope::LayerScope(QQuickItem* parent) : QQuickItem(parent) {
    static const bool installed = (QAccessible::installFactory(closedLayer), true);
    Q_UNUSED(installed)
    setFlag(ItemIsFocusScope);
    connect(this, &QQuickItem::enabledChanged, this, [this] { forgetInterface(this); });
}

} // namespace dubrix
