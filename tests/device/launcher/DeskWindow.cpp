// A window that consists of its desk: asks what the device's file /var/mobile/ask-PROGRAM says, as
// the windows do, prints what came of each errand and ends with status 5 when it is to come to the
// front.

#include "windows/Errands.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <cstdio>

namespace {

using dubrix::Errands;

void say(const QString& line) {
    std::printf("%s\n", qPrintable(line));
    std::fflush(stdout);
}

Errands::Kind kindOf(const QByteArray& verb) {
    return verb == "start"     ? Errands::Kind::Start
           : verb == "remove"  ? Errands::Kind::Remove
           : verb == "restore" ? Errands::Kind::Restore
           : verb == "export"  ? Errands::Kind::Save
                               : Errands::Kind::Install;
}

} // namespace

int main(int count, char* words[]) {
    const QCoreApplication application(count, words);
    const QStringList arguments = QCoreApplication::arguments();
    const QString name = QFileInfo(arguments[0]).fileName();
    const qsizetype root = arguments.indexOf(QStringLiteral("--root"));
    dubrix::Desk desk(3, 4);
    Errands errands(desk);
    QObject::connect(&desk, &dubrix::Desk::answered, [](const dubrix::DeskAnswer& answer) {
        if (answer.kind == dubrix::DeskAnswer::Kind::Started)
            say(QStringLiteral("started"));
    });
    QObject::connect(&errands, &Errands::ended, [&] {
        const Errands::Outcome& outcome = errands.outcomes().constLast();
        say(outcome.words + (outcome.reason.isEmpty() ? "" : ": ") + outcome.reason);
    });
    QObject::connect(&desk, &dubrix::Desk::raiseAsked, [] {
        say(QStringLiteral("raise"));
        QCoreApplication::exit(5);
    });
    QFile requests((root < 0 ? QString() : arguments[root + 1]) +
                   QStringLiteral("/var/mobile/ask-") + name);
    if (requests.open(QIODevice::ReadOnly)) {
        QByteArrayList texts = requests.readAll().split('\0');
        for (; texts.size() >= 2; texts = texts.mid(2))
            errands.run(kindOf(texts[0]), QFileInfo(QString::fromUtf8(texts[1])).fileName(),
                        texts[1]);
    }
    say(QStringLiteral("here ") + name);
    return QCoreApplication::exec();
}
