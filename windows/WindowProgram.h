#pragma once

#include "controls/ApplicationIconProvider.h"
#include "files/Descriptor.h"
#include "windows/Errands.h"
#include "windows/WindowPlace.h"

#include <QCommandLineParser>
#include <QGuiApplication>
#include <QImage>
#include <QQmlApplicationEngine>
#include <filesystem>
#include <future>
#include <memory>

class QQuickWindow;

namespace dubrix {

/// What both window programs are: the launcher's arguments and descriptors, its desk, the window
/// itself, its place beside the other, and the script that acts on it.
class WindowProgram {
public:
    struct Kind {
        const char* description;
        /// Where it stands when both windows are open.
        Side side;
        /// What the launcher may tell this program alone.
        QList<QCommandLineOption> options;
    };

    /// Ends the process with a text when the command line makes no sense.
    WindowProgram(int& argc, char** argv, const Kind& kind);

    /// The folder that is the device.
    std::filesystem::path root() const;
    bool isSet(const QString& option) const { return line_.isSet(option); }
    /// Empty when it was not given and has no default.
    std::string value(const QString& option) const { return line_.value(option).toStdString(); }
    /// What the launcher can be asked to do; null where none listens.
    Errands* errands() { return errands_.get(); }

    /// The layout's; it ends with run().
    QQmlApplicationEngine& engine() { return *engine_; }
    void showIcons(ApplicationIconProvider::Read read);
    /// The layout's window, shown in its place; null where there is none, or no room for it.
    QQuickWindow* open(const QString& layout, QVariantMap properties);
    /// Acts out the launcher's script, if there is one, on the window; the program ends with it.
    void playScript(QQuickWindow& window) const;
    /// The exit status. The terminal is for outcomes meanwhile: what commands, logs and the toolkit
    /// say goes nowhere, but for a script's sake or when everything is asked for.
    int run();
    /// Tells the terminal of an outcome.
    void say(const QString& outcome) const;

private:
    /// While the toolkit starts: a display that does not answer makes it abort the process, with
    /// words that help nobody. It ends with one sentence instead.
    struct StartMessages {
        StartMessages() { qInstallMessageHandler(take); }
        ~StartMessages() { qInstallMessageHandler(nullptr); }
        static void take(QtMsgType type, const QMessageLogContext&, const QString& text);
    };

    /// What the system takes its time for. It is asked for while the layout is read.
    struct Slow {
        QString fontFamily;
        QImage icon;
    };
    static Slow askSlowly();

    void readLine(const Kind& kind);
    QList<int> descriptors(const QString& option, qsizetype count);
    bool place(QWindow& window) const;
    void quieten();

    std::unique_ptr<StartMessages> messages_;
    QGuiApplication application_;
    QCommandLineParser line_;
    Side side_;
    std::future<Slow> slow_;
    QList<int> script_;
    /// The standard output, which commands do not get when it is for outcomes alone.
    Descriptor terminal_;
    std::unique_ptr<Desk> desk_;
    std::unique_ptr<Errands> errands_;
    std::unique_ptr<QQmlApplicationEngine> engine_;
};

} // namespace dubrix
