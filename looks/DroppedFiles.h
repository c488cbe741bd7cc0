#pragma once

#include <QString>
#include <QUrl>

namespace dubrix {

/// Whether this is an application's archive or folder on this machine, by its name.
bool isInstallable(const QUrl& file);

/// The file's name without its folders.
QString fileNameOf(const QUrl& file);

/// The application's name in the installer's "Installed com.example.it (It)"; `otherwise` when
/// there is none.
QString installedName(const QString& text, const QString& otherwise);

} // namespace dubrix
