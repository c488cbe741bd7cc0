#include "screens/ArchiveDrop.h"

#include "looks/DroppedFiles.h"

#include <algorithm>

namespace dubrix {

bool ArchiveDrop::takes(const QList<QUrl>& files) const {
    return std::ranges::any_of(files, isInstallable);
}

void ArchiveDrop::drop(const QList<QUrl>& files) {
    for (const QUrl& file : files) {
        if (!isInstallable(file))
            continue;
        names_.append(fileNameOf(file));
        Q_EMIT installationAsked(file.toLocalFile().toUtf8());
    }
    sayInstalling();
}

void ArchiveDrop::sayInstalling() {
    if (names_.isEmpty())
        return;
    words_ = QStringLiteral("Installing %1").arg(names_.constFirst());
    failed_ = false;
    percent_ = 0;
    Q_EMIT changed();
}

void ArchiveDrop::progressed(int percent) {
    percent_ = percent;
    Q_EMIT changed();
}

void ArchiveDrop::answered(bool well, const QString& text) {
    if (names_.isEmpty())
        return;
    const QString name = names_.takeFirst();
    if (well && !names_.isEmpty())
        return sayInstalling();
    failed_ = !well;
    words_ = well ? QStringLiteral("%1 is installed").arg(installedName(text, name))
                  : QStringLiteral("%1 was not installed\n%2").arg(name, text);
    Q_EMIT changed();
}

void ArchiveDrop::passed() {
    words_.clear();
    failed_ = false;
    Q_EMIT changed();
}

} // namespace dubrix
