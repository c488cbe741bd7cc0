#pragma once

#include "looks/KeyboardUse.h"

#include <QQmlEngine>

namespace dubrix {

/// Makes KeyboardUse known to this layout.
struct KeyboardInHome {
    Q_GADGET
    QML_FOREIGN(dubrix::KeyboardUse)
    QML_NAMED_ELEMENT(KeyboardUse)
    QML_SINGLETON
};

} // namespace dubrix
