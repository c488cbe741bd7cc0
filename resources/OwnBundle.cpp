#include "resources/OwnBundle.h"

#include <QFile>

namespace dubrix {

PropertyList ownInformation() {
    QFile file(QStringLiteral(":/resources/Dubrix.app/Info.plist"));
    if (!file.open(QIODevice::ReadOnly))
        return PropertyList::dictionary();
    return PropertyList::parse(file.readAll().toStdString()).value_or(PropertyList::dictionary());
}

} // namespace dubrix
