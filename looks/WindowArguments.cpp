#include "looks/WindowArguments.h"

namespace dubrix {

QList<int> descriptorsIn(const QString& text) {
    QList<int> descriptors;
    for (const QString& number : text.split(u':', Qt::SkipEmptyParts))
        descriptors.append(number.toInt());
    return descriptors;
}

QSize sizeIn(const QString& text) {
    return {text.section(u'x', 0, 0).toInt(), text.section(u'x', 1).toInt()};
}

} // namespace dubrix
