#pragma once

#include <QString>

namespace dubrix {

/// The text for `key` in the application's own string table. Without one it is `value`, and where
/// that is empty, too, the key itself.
QString localizedStringForKey(const QString& key, const QString& value);

} // namespace dubrix
