#pragma once

#include <QByteArray>
#include <QObject>
#include <QQueue>
#include <QSocketNotifier>

namespace dubrix {

/// What a program on the device asks of the launcher, which alone reaches the desktop's files and
/// other namespaces. On the pipe to it go pairs of texts that end in a zero byte, a verb and its
/// argument; back come lines: "progress PERCENT", then "done TEXT" or "failed TEXT", and "raise"
/// whenever the window is to come to the front. One request is on its way at a time, the others
/// wait here: nobody ever waits for a full pipe.
class Desk : public QObject {
    Q_OBJECT

public:
    /// The descriptors become the desk's and are closed in commands that this process runs. Writing
    /// to a launcher that has gone must not end the process: SIGPIPE is ignored from now on.
    Desk(int answers, int requests, QObject* parent = nullptr);
    ~Desk() override;

    /// Asks for `verb`: "install" (a file or folder of the desktop), "remove" and "export" (an
    /// identifier), "start" (the application; without argument). Answered once, in order.
    void ask(const QByteArray& verb, const QByteArray& argument);

Q_SIGNALS:
    /// The request that is on its way has come so far.
    void progressed(int percent);
    /// The end of a request, with the launcher's words about it.
    void answered(bool well, const QString& text);
    void raiseAsked();

private:
    void read();
    void take(const QByteArray& line);
    void sendNext();
    void close();

    int answers_;
    int requests_;
    QSocketNotifier notifier_;
    QByteArray buffer_;
    QQueue<QByteArray> waiting_;
    bool busy_ = false;
};

} // namespace dubrix
