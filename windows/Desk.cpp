#include "windows/Desk.h"

#include "files/FileTree.h"

#include <QStringList>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace dubrix {

namespace {

/// The answer that these fields are; nothing when they are none.
std::optional<DeskAnswer> answerIn(const QStringList& fields) {
    using Kind = DeskAnswer::Kind;
    const QString& kind = fields.constFirst();
    if (kind == QStringLiteral("failed"))
        return DeskAnswer{.kind = Kind::Failed, .text = fields.value(1)};
    if (kind == QStringLiteral("started"))
        return DeskAnswer{.kind = Kind::Started};
    if (kind == QStringLiteral("removed"))
        return DeskAnswer{.kind = Kind::Removed};
    if (kind == QStringLiteral("kept"))
        return DeskAnswer{.kind = Kind::Kept};
    if (kind == QStringLiteral("back"))
        return DeskAnswer{.kind = Kind::Back};
    if (kind == QStringLiteral("saved"))
        return DeskAnswer{.kind = Kind::Saved, .text = fields.value(1)};
    const bool replaced = kind == QStringLiteral("replaced");
    if (!replaced && kind != QStringLiteral("installed"))
        return std::nullopt;
    return DeskAnswer{.kind = Kind::Installed,
                      .name = fields.value(2),
                      .version = fields.value(3),
                      .earlier = replaced ? std::optional(fields.value(4)) : std::nullopt};
}

const DeskAnswer launcherHasEnded{.text = QStringLiteral("the launcher has ended")};

} // namespace

Desk::Desk(int answers, int requests, QObject* parent)
    : QObject(parent),
      answers_(answers),
      requests_(requests),
      notifier_(answers, QSocketNotifier::Read) {
    std::signal(SIGPIPE, SIG_IGN);
    ::fcntl(answers_, F_SETFL, O_NONBLOCK);
    connect(&notifier_, &QSocketNotifier::activated, this, &Desk::read);
}

Desk::~Desk() {
    ::close(answers_);
    ::close(requests_);
}

void Desk::ask(const QByteArray& verb, const QByteArray& argument) {
    const QByteArray request = verb + '\0' + argument + '\0';
    busy_ = true;
    if (!notifier_.isEnabled() ||
        !writeAll(requests_, {request.constData(), static_cast<std::size_t>(request.size())}))
        QMetaObject::invokeMethod(this, [this] { answer(launcherHasEnded); }, Qt::QueuedConnection);
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
    const QStringList fields = QString::fromUtf8(line).split(u'\t');
    if (fields.constFirst() == QStringLiteral("raise"))
        Q_EMIT raiseAsked();
    else if (fields.size() == 2 && fields.constFirst() == QStringLiteral("install"))
        Q_EMIT installationAsked(line.mid(line.indexOf('\t') + 1));
    else if (fields.constFirst() == QStringLiteral("unopened"))
        Q_EMIT notOpened(fields.value(1));
    else if (fields.constFirst() == QStringLiteral("progress") && busy_)
        Q_EMIT progressed(fields.value(1).toInt());
    else if (const auto found = answerIn(fields))
        answer(*found);
}

void Desk::answer(const DeskAnswer& answer) {
    if (std::exchange(busy_, false))
        Q_EMIT answered(answer);
}

/// The launcher has gone: whatever is open fails, and so does whatever comes.
void Desk::close() {
    notifier_.setEnabled(false);
    answer(launcherHasEnded);
}

} // namespace dubrix
