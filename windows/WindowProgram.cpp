#include "windows/WindowProgram.h"

#include "controls/Appearance.h"
#include "driver/DriverModule.h"
#include "files/FileTree.h"

#include <QIcon>
#include <QLibrary>
#include <QPixmap>
#include <QQmlComponent>
#include <QQuickWindow>
#include <QScreen>
#include <cstdio>
#include <fcntl.h>
#include <sys/prctl.h>
#include <unistd.h>

static void loadOwnIcon() {
    Q_INIT_RESOURCE(own_icon);
}

namespace dubrix {

namespace {

QCommandLineOption option(const char* name, const char* description, const char* value = "") {
    return {QString::fromLatin1(name), QString::fromLatin1(description),
            QString::fromLatin1(value)};
}

/// "WIDTHxHEIGHT"; empty when it is not.
QSize sizeIn(const QString& text) {
    return {text.section(u'x', 0, 0).toInt(), text.section(u'x', 1).toInt()};
}

} // namespace

void WindowProgram::StartMessages::take(QtMsgType type, const QMessageLogContext&, const QString&) {
    if (type != QtFatalMsg)
        return;
    const QByteArray wayland = qgetenv("WAYLAND_DISPLAY");
    const QByteArray display = wayland.isEmpty() ? qgetenv("DISPLAY") : wayland;
    std::fprintf(stderr, "dubrix: the display%s%s cannot be used\n", display.isEmpty() ? "" : " ",
                 display.constData());
    ::_exit(1);
}

WindowProgram::WindowProgram(int& argc, char** argv, const Kind& kind)
    : messages_(std::make_unique<StartMessages>()),
      application_(argc, argv),
      side_(kind.side) {
    messages_.reset();
    // The window system's names for both programs are those of the desktop's entry.
    QGuiApplication::setApplicationName(QStringLiteral("dubrix"));
    QGuiApplication::setApplicationDisplayName(QStringLiteral("Dubrix"));
    QGuiApplication::setDesktopFileName(QStringLiteral("com.dubrix.Dubrix"));
    readLine(kind);
    script_ = descriptors(QStringLiteral("drive"), 3);
    if (const QList<int> pipes = descriptors(QStringLiteral("desk"), 2); !pipes.isEmpty()) {
        desk_ = std::make_unique<Desk>(pipes[0], pipes[1]);
        errands_ = std::make_unique<Errands>(*desk_);
    }
    // Not before what may end the process: nothing may run when the statics go.
    slow_ = std::async(std::launch::async, askSlowly);
    chooseAppearance(line_.value(QStringLiteral("appearance")));
    chooseMotion(line_.isSet(QStringLiteral("reduced-motion")));
    engine_ = std::make_unique<QQmlApplicationEngine>();
    engine_->addImportPath(QStringLiteral("qrc:/qt/qml"));
}

WindowProgram::Slow WindowProgram::askSlowly() {
    loadOwnIcon();
    return {ownFontFamily(), QImage(QStringLiteral(":/own/AppIcon.png"), "png")};
}

void WindowProgram::readLine(const Kind& kind) {
    line_.setApplicationDescription(QString::fromLatin1(kind.description));
    line_.addHelpOption();
    line_.addOptions(
        {option("root", "The device's root folder.", "folder"),
         option("appearance", "How the windows look: light or dark.", "appearance"),
         option("reduced-motion", "Leave movements out."),
         option("size", "The window's size.", "WIDTHxHEIGHT"),
         option("beside", "Stand beside the other window; not at all without room for both."),
         option("verbose", "Pass on all that commands and logs say."),
         option("drive",
                "Act out the script that the first descriptor reads; pictures go to the second, "
                "answers come from the third.",
                "script:pictures:answers"),
         option("desk", "Descriptors of the launcher's answers and of requests to it.",
                "answers:requests")});
    line_.addOptions(kind.options);
    line_.process(application_);
}

/// The numbers between the colons of an option like "6:7:8". What goes into them is acted upon on
/// the desktop, so they are kept from commands that this process runs: closed in them, and not to
/// be had through /proc or by tracing this process either.
QList<int> WindowProgram::descriptors(const QString& option, qsizetype count) {
    QList<int> numbers;
    for (const QString& number : line_.value(option).split(u':', Qt::SkipEmptyParts))
        numbers.append(number.toInt());
    if (line_.isSet(option) && numbers.size() != count)
        line_.showHelp(2);
    for (const int number : numbers)
        ::fcntl(number, F_SETFD, FD_CLOEXEC);
    if (!numbers.isEmpty())
        ::prctl(PR_SET_DUMPABLE, 0);
    return numbers;
}

std::filesystem::path WindowProgram::root() const {
    const std::string folder = value(QStringLiteral("root"));
    return folder.empty() ? "/" : folder;
}

void WindowProgram::showIcons(ApplicationIconProvider::Read read) {
    engine_->addImageProvider(QLatin1String(ApplicationIconProvider::name),
                              new ApplicationIconProvider(std::move(read)));
}

QQuickWindow* WindowProgram::open(const QString& layout, QVariantMap properties) {
    properties.insert(QStringLiteral("visible"), false); // before it is in its place
    engine_->setInitialProperties(properties);
    const QUrl url(QStringLiteral("qrc:/qt/qml/") + layout);
    // Read once already, and kept by the engine, so that load() only has to make it.
    {
        const QQmlComponent layoutRead(engine_.get(), url);
    }
    const Slow slow = slow_.get();
    chooseFont(slow.fontFamily);
    QGuiApplication::setWindowIcon(QPixmap::fromImage(slow.icon));
    engine_->load(url);
    auto* const window = qobject_cast<QQuickWindow*>(engine_->rootObjects().value(0));
    if (window == nullptr || !place(*window)) {
        engine_.reset();
        return nullptr;
    }
    if (desk_)
        QObject::connect(desk_.get(), &Desk::raiseAsked, window,
                         [window] { bringToFront(*window); });
    window->show();
    return window;
}

/// False where there is no room for it.
bool WindowProgram::place(QWindow& window) const {
    const QSize asked = sizeIn(line_.value(QStringLiteral("size")));
    const QRect available = window.screen()->availableGeometry();
    QRect wanted(QPoint(), asked.isEmpty() ? window.size() : asked);
    if (line_.isSet(QStringLiteral("beside"))) {
        const auto beside = placeBeside(available, wanted.size(), side_);
        if (!beside && side_ == Side::Left) {
            std::fputs(
                "dubrix: the screen has no room for the home screen beside the application\n",
                stderr);
            return false;
        }
        wanted = beside.value_or(wanted);
    }
    // A script's size is meant; and without a window system nothing is drawn around a window.
    if (asked.isEmpty() && QGuiApplication::platformName() != QStringLiteral("offscreen"))
        wanted.setSize(fittingSize(available.size(), wanted.size()));
    window.setMinimumSize(window.minimumSize().boundedTo(wanted.size()));
    window.resize(wanted.size());
    if (!wanted.topLeft().isNull())
        window.setPosition(wanted.topLeft());
    return true;
}

void WindowProgram::playScript(QQuickWindow& window) const {
    if (script_.isEmpty())
        return;
    QLibrary driver(QCoreApplication::applicationDirPath() + QStringLiteral("/dubrix-driver.so"));
    if (const auto play = reinterpret_cast<PlayScript>(driver.resolve(playScriptName)))
        return play(window, script_[0], script_[1], script_[2]);
    qCritical("%s", qPrintable(driver.errorString()));
    QMetaObject::invokeMethod(&window, [] { QCoreApplication::exit(2); }, Qt::QueuedConnection);
}

void WindowProgram::quieten() {
    terminal_ = Descriptor(::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
    const Descriptor nothing(::open("/dev/null", O_WRONLY | O_CLOEXEC));
    if (!script_.isEmpty() || line_.isSet(QStringLiteral("verbose")) || !nothing.isOpen())
        return;
    ::dup2(nothing.get(), STDOUT_FILENO);
    ::dup2(nothing.get(), STDERR_FILENO);
}

void WindowProgram::say(const QString& outcome) const {
    writeAll(terminal_.get(), outcome.toStdString() + "\n");
}

int WindowProgram::run() {
    quieten();
    if (errands_)
        QObject::connect(errands_.get(), &Errands::ended, &application_, [this] {
            const Errands::Outcome& last = errands_->outcomes().constLast();
            say(last.words + (last.reason.isEmpty() ? QString() : ": " + last.reason));
        });
    const int status = QGuiApplication::exec();
    engine_.reset();
    return status;
}

} // namespace dubrix
