#include "looks/DroppedFiles.h"

#include <QDir>

namespace dubrix {

bool isInstallable(const QUrl& file) {
    const QString name = fileNameOf(file);
    return name.endsWith(QStringLiteral(".ipa"), Qt::CaseInsensitive) ||
           name.endsWith(QStringLiteral(".app"));
}

QString fileNameOf(const QUrl& file) {
    return QDir(file.toLocalFile()).dirName();
}

QString installedName(const QString& text, const QString& otherwise) {
    const qsizetype open = text.indexOf(QStringLiteral(" ("));
    return open > 0 && text.endsWith(u')') ? text.mid(open + 2).chopped(1) : otherwise;
}

} // namespace dubrix
