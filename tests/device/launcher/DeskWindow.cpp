// A window that consists of its desk: asks what the device's file /var/mobile/ask-PROGRAM says, as
// the windows do, prints each answer and ends with status 5 when it is to come to the front.

#include "device/desk/Desk.h"

#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <cstdio>

namespace {

void say(const QByteArray& line) {
    std::printf("%s\n", line.constData());
    std::fflush(stdout);
}

} // namespace

int main(int count, char* words[]) {
    const QCoreApplication application(count, words);
    const QStringList arguments = QCoreApplication::arguments();
    const QByteArray name = QFileInfo(arguments[0]).fileName().toUtf8();
    const qsizetype root = arguments.indexOf(QStringLiteral("--root"));
    dubrix::Desk desk(3, 4);
    QObject::connect(&desk, &dubrix::Desk::answered, [](bool well, const QString& text) {
        say((well ? "done " : "failed ") + text.toUtf8());
    });
    QObject::connect(&desk, &dubrix::Desk::raiseAsked, [] {
        say("raise");
        QCoreApplication::exit(5);
    });
    QFile requests((root < 0 ? QString() : arguments[root + 1]) +
                   QStringLiteral("/var/mobile/ask-") + QString::fromUtf8(name));
    if (requests.open(QIODevice::ReadOnly)) {
        QByteArrayList texts = requests.readAll().split('\0');
        for (; texts.size() >= 2; texts = texts.mid(2))
            desk.ask(texts[0], texts[1]);
    }
    say("here " + name);
    return QCoreApplication::exec();
}
