#include "screens/colors/LocalizedString.h"

#include "formats/lists/PropertyList.h"

#include <QFile>

namespace dubrix {

namespace {

std::optional<PropertyList> stringTable() {
    QFile file(QStringLiteral(":/resources/Dubrix.app/en.lproj/Localizable.strings"));
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return PropertyList::parse(file.readAll().toStdString());
}

} // namespace

QString localizedStringForKey(const QString& key, const QString& value) {
    static const std::optional<PropertyList> table = stringTable();
    const auto text = table ? table->stringForKey(key.toStdString()) : std::nullopt;
    if (text)
        return QString::fromStdString(*text);
    return value.isEmpty() ? key : value;
}

} // namespace dubrix
