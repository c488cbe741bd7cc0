#pragma once

#include "looks/LayerScope.h"

#include <QQmlEngine>

namespace dubrix {

/// Makes LayerScope known to this layout.
struct LayersInLayout {
    Q_GADGET
    QML_FOREIGN(dubrix::LayerScope)
    QML_NAMED_ELEMENT(LayerScope)
};

} // namespace dubrix
