#pragma once

#include <QList>
#include <QSize>
#include <QString>

namespace dubrix {

/// The numbers between the colons of "6:7:8", as the launcher hands descriptors to a window.
QList<int> descriptorsIn(const QString& text);

/// A window's size, written "WIDTHxHEIGHT"; empty when it is not.
QSize sizeIn(const QString& text);

} // namespace dubrix
