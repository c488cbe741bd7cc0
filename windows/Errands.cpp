#include "windows/Errands.h"

#include <QDir>
#include <algorithm>

namespace dubrix {

namespace {

/// The file's name without its folders.
QString nameOf(const QUrl& file) {
    return QDir(file.toLocalFile()).dirName();
}

bool isInstallable(const QUrl& file) {
    const QString name = nameOf(file);
    return name.endsWith(QStringLiteral(".ipa"), Qt::CaseInsensitive) ||
           name.endsWith(QStringLiteral(".app"));
}

/// What there is to say of an errand that went well; nothing where the window shows it.
QString wordsFor(const QString& subject, const DeskAnswer& answer) {
    if (answer.kind == DeskAnswer::Kind::Removed || answer.kind == DeskAnswer::Kind::Kept)
        return Errands::tr("%1 is removed").arg(subject);
    if (answer.kind == DeskAnswer::Kind::Back)
        return Errands::tr("%1 is back").arg(subject);
    if (answer.kind == DeskAnswer::Kind::Saved)
        return Errands::tr("%1 is saved as %2").arg(subject, answer.text);
    if (answer.kind != DeskAnswer::Kind::Installed)
        return {};
    const QString name = answer.name.isEmpty() ? subject : answer.name;
    const QString earlier = answer.earlier.value_or(answer.version);
    if (earlier == answer.version || earlier.isEmpty() || answer.version.isEmpty())
        return Errands::tr("%1 is installed").arg(name);
    return Errands::tr("%1 %2 is installed in place of %3").arg(name, answer.version, earlier);
}

} // namespace

Errands::Errands(Desk& desk) : desk_(desk) {
    connect(&desk, &Desk::answered, this, &Errands::finish);
    connect(&desk, &Desk::installationAsked, this, [this](const QByteArray& path) {
        run(Kind::Install, QDir(QString::fromUtf8(path)).dirName(), path);
    });
    connect(&desk, &Desk::notOpened, this, &Errands::tellNotOpened);
    connect(&desk, &Desk::progressed, this, [this](int percent) {
        percent_ = percent;
        Q_EMIT changed();
    });
}

void Errands::run(Kind kind, const QString& subject, const QByteArray& argument) {
    waiting_.append({kind, subject, argument});
    if (waiting_.size() == 1) {
        outcomes_.clear();
        begin();
    }
    Q_EMIT changed();
}

bool Errands::takes(const QList<QUrl>& files) {
    return std::ranges::any_of(files, isInstallable);
}

void Errands::install(const QList<QUrl>& files) {
    for (const QUrl& file : files)
        if (isInstallable(file))
            run(Kind::Install, nameOf(file), file.toLocalFile().toUtf8());
}

void Errands::tellNotOpened(const QString& address) {
    add({tr("%1 was not opened").arg(address), tr("No program of this desktop opens it.")});
}

QString Errands::doing() const {
    const QString words[] = {{}, // its window says so
                             tr("Removing %1"),
                             tr("Putting %1 back"),
                             tr("Exporting %1"),
                             tr("Installing %1")};
    if (waiting_.isEmpty() || waiting_.constFirst().kind == Kind::Start)
        return {};
    const Errand& first = waiting_.constFirst();
    const qsizetype more = waiting_.size() - 1;
    return words[static_cast<int>(first.kind)].arg(first.subject) +
           (more > 0 ? tr(", %1 more to do").arg(more) : QString());
}

void Errands::forget() {
    outcomes_.clear();
    Q_EMIT changed();
}

void Errands::begin() {
    constexpr const char* verbs[] = {"start", "remove", "restore", "export", "install"};
    percent_ = -1;
    const Errand& errand = waiting_.constFirst();
    desk_.ask(verbs[static_cast<int>(errand.kind)], errand.argument);
}

void Errands::finish(const DeskAnswer& answer) {
    if (waiting_.isEmpty())
        return;
    const QString failures[] = {tr("%1 did not start"), tr("“%1” was not removed"),
                                tr("“%1” was not put back"), tr("“%1” was not exported"),
                                tr("“%1” was not installed")};
    const Errand errand = waiting_.takeFirst();
    Outcome outcome{wordsFor(errand.subject, answer)};
    const bool isFailed = answer.kind == DeskAnswer::Kind::Failed;
    if (isFailed)
        outcome = {failures[static_cast<int>(errand.kind)].arg(errand.subject), answer.text};
    if (answer.kind == DeskAnswer::Kind::Removed)
        outcome.removal = {errand.subject, {}};
    else if (answer.kind == DeskAnswer::Kind::Kept || (isFailed && errand.kind == Kind::Restore))
        outcome.removal = {errand.subject, errand.argument};
    if (!waiting_.isEmpty())
        begin();
    else
        percent_ = -1;
    add(outcome);
}

void Errands::add(const Outcome& outcome) {
    if (!outcome.words.isEmpty())
        outcomes_.append(outcome);
    if (outcomes_.size() > mostOutcomes)
        outcomes_.removeFirst();
    Q_EMIT changed();
    if (!outcome.words.isEmpty())
        Q_EMIT ended();
}

} // namespace dubrix
