#include "device/home/HomeScreen.h"

#include "device/BundleInfo.h"
#include "device/desk/Desk.h"
#include "looks/ApplicationIconProvider.h"
#include "looks/DroppedFiles.h"

#include <algorithm>

namespace dubrix {

HomeScreen::HomeScreen(HomeApplications& applications, Desk* desk, const std::filesystem::path& own,
                       QObject* parent)
    : QObject(parent),
      applications_(applications),
      desk_(desk),
      ownIcon_(ApplicationIconProvider::addressFor(own.native())) {
    const auto info = BundleInfo::read(own);
    ownName_ = info ? QString::fromStdString(info->displayName) : QStringLiteral("Dubrix");
    if (!desk_)
        return;
    connect(desk_, &Desk::answered, this, &HomeScreen::finish);
    connect(desk_, &Desk::progressed, this, [this](int percent) {
        percent_ = percent;
        Q_EMIT errandChanged();
    });
}

QString HomeScreen::nameOf(const QString& identifier) const {
    const int position = applications_.positionOf(identifier);
    return position < 0 ? identifier : applications_.all()[static_cast<std::size_t>(position)].name;
}

void HomeScreen::tapOwn() {
    run(Kind::Start, ownName_);
}

void HomeScreen::tap(const QString& identifier) {
    say(tr("%1 is at home on the phone: its programs do not run here.").arg(nameOf(identifier)));
}

void HomeScreen::remove(const QString& identifier) {
    alert({tr("Remove “%1”?").arg(nameOf(identifier)),
           tr("The application and all of its files leave the device."), tr("Remove"), identifier});
}

void HomeScreen::save(const QString& identifier) {
    run(Kind::Save, nameOf(identifier), identifier.toUtf8());
}

bool HomeScreen::takes(const QList<QUrl>& files) const {
    return std::ranges::any_of(files, isInstallable);
}

void HomeScreen::drop(const QList<QUrl>& files) {
    for (const QUrl& file : files)
        if (isInstallable(file))
            run(Kind::Install, fileNameOf(file), file.toLocalFile().toUtf8());
}

void HomeScreen::run(Kind kind, const QString& subject, const QByteArray& argument) {
    if (!desk_)
        return say(tr("This is only possible when the launcher has opened the window."));
    constexpr const char* verbs[] = {"start", "remove", "export", "install"};
    errands_.append({kind, subject});
    say({});
    Q_EMIT errandChanged();
    desk_->ask(verbs[static_cast<int>(kind)], argument);
}

QString HomeScreen::errand() const {
    if (errands_.isEmpty())
        return {};
    const QString more =
        errands_.size() > 1 ? tr(", %1 more to do").arg(errands_.size() - 1) : QString();
    const QString& subject = errands_.constFirst().subject;
    switch (errands_.constFirst().kind) {
    case Kind::Start:
        return {}; // its window says so
    case Kind::Remove:
        return tr("Removing %1").arg(subject) + more;
    case Kind::Save:
        return tr("Exporting %1").arg(subject) + more;
    case Kind::Install:
        return tr("Installing %1").arg(subject) + more;
    }
    return {};
}

void HomeScreen::finish(bool well, const QString& text) {
    if (errands_.isEmpty())
        return;
    const Errand errand = errands_.takeFirst();
    percent_ = -1;
    Q_EMIT errandChanged();
    if (!well) {
        const QString titles[] = {tr("%1 did not start"), tr("“%1” was not removed"),
                                  tr("“%1” was not exported"), tr("“%1” was not installed")};
        return alert({titles[static_cast<int>(errand.kind)].arg(errand.subject), text, {}, {}});
    }
    if (errand.kind == Kind::Save)
        say(tr("%1 is saved as %2").arg(errand.subject, text));
    else if (errand.kind == Kind::Install)
        say(tr("%1 is installed").arg(installedName(text, errand.subject)));
}

void HomeScreen::say(const QString& remark) {
    if (remark != std::exchange(remark_, remark))
        Q_EMIT remarkChanged();
}

void HomeScreen::remarkPassed() {
    say({});
}

void HomeScreen::alert(const Alert& alert) {
    if (!alert_.title.isEmpty()) {
        alerts_.append(alert);
        return;
    }
    alert_ = alert;
    Q_EMIT alertChanged();
}

void HomeScreen::alertAccepted() {
    const Alert accepted = alert_;
    alertDismissed();
    if (!accepted.identifier.isEmpty())
        run(Kind::Remove, nameOf(accepted.identifier), accepted.identifier.toUtf8());
}

void HomeScreen::alertDismissed() {
    alert_ = alerts_.isEmpty() ? Alert{} : alerts_.takeFirst();
    Q_EMIT alertChanged();
}

int HomeScreen::walk(int key, int position, int count, int columns, int rows) {
    const int page = columns * rows;
    if (page <= 0)
        return -1;
    const int first = position / page * page;
    const int last = std::min(first + page, count) - 1;
    const auto among = [count](int wanted) {
        return std::clamp(wanted, 0, std::max(count - 1, 0));
    };
    switch (key) {
    case Qt::Key_Left:
        return among(position - 1);
    case Qt::Key_Right:
        return among(position + 1);
    case Qt::Key_Up:
        return position - columns >= first ? position - columns : position;
    case Qt::Key_Down:
        return position + columns <= last ? position + columns : position;
    case Qt::Key_PageUp:
        return among(position - page);
    case Qt::Key_PageDown:
        return among(position + page);
    case Qt::Key_Home:
        return 0;
    case Qt::Key_End:
        return among(count - 1);
    default:
        return -1;
    }
}

} // namespace dubrix
