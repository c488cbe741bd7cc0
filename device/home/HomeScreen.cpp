#include "device/home/HomeScreen.h"

#include "controls/ApplicationIconProvider.h"
#include "device/registry/BundleInfo.h"
#include <algorithm>

namespace dubrix {

HomeScreen::HomeScreen(HomeApplications& applications, Errands* errands,
                       const std::filesystem::path& own, QObject* parent)
    : QObject(parent),
      applications_(applications),
      errands_(errands),
      ownIcon_(ApplicationIconProvider::addressFor(own.native())) {
    const auto info = BundleInfo::read(own);
    ownName_ = info ? QString::fromStdString(info->displayName) : QStringLiteral("Dubrix");
    if (!errands_)
        return;
    connect(errands_, &Errands::changed, this, &HomeScreen::errandChanged);
    connect(errands_, &Errands::ended, this, &HomeScreen::tellOutcome);
}

QString HomeScreen::nameOf(const QString& identifier) const {
    const int position = applications_.positionOf(identifier);
    return position < 0 ? identifier : applications_.all()[static_cast<std::size_t>(position)].name;
}

void HomeScreen::tapOwn() {
    if (mayChange())
        errands_->run(Errands::Kind::Start, ownName_);
}

void HomeScreen::tap(const QString& identifier) {
    say(tr("%1 is at home on the phone: its programs do not run here.").arg(nameOf(identifier)));
}

void HomeScreen::remove(const QString& identifier) {
    alert({tr("Remove “%1”?").arg(nameOf(identifier)),
           tr("%1 and all of its files leave the device. This can be undone until you remove "
              "something else or close the home screen.")
               .arg(identifier),
           tr("Remove"), identifier});
}

void HomeScreen::save(const QString& identifier) {
    if (mayChange())
        errands_->run(Errands::Kind::Save, nameOf(identifier), identifier.toUtf8());
}

bool HomeScreen::takes(const QList<QUrl>& files) const {
    return Errands::takes(files);
}

void HomeScreen::drop(const QList<QUrl>& files) {
    if (mayChange())
        errands_->install(files);
}

bool HomeScreen::mayChange() {
    say(errands_ ? QString()
                 : tr("This is only possible when the launcher has opened the window."));
    return errands_;
}

QString HomeScreen::errand() const {
    return errands_ ? errands_->doing() : QString();
}

int HomeScreen::percent() const {
    return errands_ ? errands_->percent() : -1;
}

QString HomeScreen::remark() const {
    return remark_.isEmpty() && removal_ ? removal_->words : remark_;
}

QString HomeScreen::remarkAction() const {
    return remark_.isEmpty() && !remark().isEmpty() ? tr("Undo") : QString();
}

/// A failure waits for an answer; whatever went well is remarked on.
void HomeScreen::tellOutcome() {
    const Errands::Outcome& last = errands_->outcomes().constLast();
    const auto isUndoable = [](const Errands::Outcome& outcome) {
        return outcome.removal && !outcome.removal->identifier.isEmpty();
    };
    if (last.removal) {
        removal_ = isUndoable(last) ? std::optional(last) : std::nullopt;
        Q_EMIT remarkChanged();
    }
    if (!last.reason.isEmpty())
        return alert({last.words, last.reason, {}, {}});
    QStringList lines;
    for (const Errands::Outcome& outcome : errands_->outcomes())
        if (outcome.reason.isEmpty() && !isUndoable(outcome))
            lines << outcome.words;
    say(lines.join(u'\n'));
}

void HomeScreen::say(const QString& remark) {
    if (remark != std::exchange(remark_, remark))
        Q_EMIT remarkChanged();
}

void HomeScreen::remarkPassed() {
    if (remark_.isEmpty() && removal_) {
        removal_->words.clear();
        Q_EMIT remarkChanged();
    }
    say({});
}

void HomeScreen::undo() {
    const auto undone = std::exchange(removal_, std::nullopt);
    say({});
    Q_EMIT remarkChanged();
    if (undone)
        errands_->run(Errands::Kind::Restore, undone->removal->name, undone->removal->identifier);
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
    if (!accepted.identifier.isEmpty() && mayChange())
        errands_->run(Errands::Kind::Remove, nameOf(accepted.identifier),
                      accepted.identifier.toUtf8());
}

/// One goes before the next comes, which is told as any other.
void HomeScreen::alertDismissed() {
    alert_ = {};
    Q_EMIT alertChanged();
    if (!alerts_.isEmpty())
        alert(alerts_.takeFirst());
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
