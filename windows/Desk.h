#pragma once

#include <QByteArray>
#include <QObject>
#include <QSocketNotifier>
#include <optional>

namespace dubrix {

/// What came of a request.
struct DeskAnswer {
    enum class Kind { Failed, Started, Removed, Kept, Back, Saved, Installed };

    Kind kind = Kind::Failed;
    /// Why it failed, or the file that was saved.
    QString text{};
    /// What was installed, by its own word; empty where it gives none.
    QString name{};
    QString version{};
    /// The version that it replaced, if it replaced one.
    std::optional<QString> earlier{};
};

/// What a program on the device asks of the launcher, which alone reaches the desktop's files and
/// other namespaces. On the pipe to it go pairs of texts that end in a zero byte, a verb and its
/// argument; back come lines of fields between tabs: "progress" PERCENT, then one of
///
///     installed IDENTIFIER NAME VERSION
///     replaced IDENTIFIER NAME VERSION EARLIER-VERSION
///     removed IDENTIFIER
///     kept IDENTIFIER            (removed, and can be put back)
///     back IDENTIFIER
///     saved FILE
///     started
///     failed REASON
///
/// and at any time "raise", when the window is to come to the front, "install" FILE, when it is to
/// ask for that, and "unopened" ADDRESS, when nothing on the desktop has opened that.
class Desk : public QObject {
    Q_OBJECT

public:
    /// The descriptors become the desk's. Writing to a launcher that has gone must not end the
    /// process: SIGPIPE is ignored from now on.
    Desk(int answers, int requests, QObject* parent = nullptr);
    ~Desk() override;

    /// Asks for `verb`: "install" (a file or folder of the desktop), "remove", "restore" and
    /// "export" (an identifier), "start" (the application; without argument). Answered once, after
    /// the call; the next may be asked for then, so nobody ever waits for a full pipe.
    void ask(const QByteArray& verb, const QByteArray& argument);

Q_SIGNALS:
    /// The request has come so far.
    void progressed(int percent);
    void answered(const DeskAnswer& answer);
    void raiseAsked();
    void installationAsked(const QByteArray& path);
    void notOpened(const QString& address);

private:
    void read();
    void take(const QByteArray& line);
    void answer(const DeskAnswer& answer);
    void close();

    int answers_;
    int requests_;
    QSocketNotifier notifier_;
    QByteArray buffer_;
    bool busy_ = false;
};

} // namespace dubrix
