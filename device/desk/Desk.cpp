#include "device/desk/Desk.h"

#include "device/FileTree.h"

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace dubrix {

Desk::Desk(int answers, int requests, QObject* parent)
    : QObject(parent),
      answers_(answers),
      requests_(requests),
      notifier_(answers, QSocketNotifier::Read) {
    std::signal(SIGPIPE, SIG_IGN);
    for (const int descriptor : {answers_, requests_})
        ::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
    ::fcntl(answers_, F_SETFL, O_NONBLOCK);
    connect(&notifier_, &QSocketNotifier::activated, this, &Desk::read);
}

Desk::~Desk() {
    ::close(answers_);
    ::close(requests_);
}

void Desk::ask(const QByteArray& verb, const QByteArray& argument) {
    waiting_.enqueue(verb + '\0' + argument + '\0');
    if (!busy_)
        sendNext();
}

void Desk::sendNext() {
    while (!waiting_.isEmpty()) {
        const QByteArray request = waiting_.dequeue();
        busy_ =
            writeAll(requests_, {request.constData(), static_cast<std::size_t>(request.size())});
        if (busy_)
            return;
        Q_EMIT answered(false, QStringLiteral("the launcher has ended"));
    }
}

void Desk::read() {
    char bytes[4096];
    const ssize_t count = ::read(answers_, bytes, sizeof bytes);
    if (count < 0 && (errno == EAGAIN || errno == EINTR))
        return;
    if (count <= 0)
        return close();
    buffer_.append(bytes, count);
    for (qsizetype end = buffer_.indexOf('\n'); end >= 0; end = buffer_.indexOf('\n')) {
        const QByteArray line = buffer_.left(end);
        buffer_.remove(0, end + 1);
        take(line);
    }
}

void Desk::take(const QByteArray& line) {
    const qsizetype blank = line.indexOf(' ');
    const QByteArray kind = blank < 0 ? line : line.left(blank);
    const QString text = QString::fromUtf8(line.mid(kind.size() + 1));
    if (kind == "raise") {
        Q_EMIT raiseAsked();
    } else if (kind == "progress" && busy_) {
        Q_EMIT progressed(text.toInt());
    } else if ((kind == "done" || kind == "failed") && busy_) {
        busy_ = false;
        Q_EMIT answered(kind == "done", text);
        if (!busy_)
            sendNext();
    }
}

/// The launcher has gone: whatever is open fails, and so does whatever comes.
void Desk::close() {
    notifier_.setEnabled(false);
    if (std::exchange(busy_, false))
        Q_EMIT answered(false, QStringLiteral("the launcher has ended"));
    sendNext();
}

} // namespace dubrix
