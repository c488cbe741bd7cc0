#include "controls/Appearance.h"
#include "controls/ApplicationIconProvider.h"
#include "device/home/HomeScreen.h"
#include "device/home/Wallpaper.h"
#include "device/registry/BundleIcon.h"
#include "files/WholeFile.h"
#include "formats/lists/PropertyList.h"

#include <QElapsedTimer>
#include <QGuiApplication>
#include <QQmlApplicationEngine>
#include <QQmlExtensionPlugin>
#include <QQuickItem>
#include <QQuickWindow>
#include <algorithm>
#include <fstream>
#include <iostream>
#include <time.h>

Q_IMPORT_QML_PLUGIN(DubrixHomePlugin)

// home-screen make DEVICE COUNT BUNDLE: a device with so many applications, each with the icon
// files of BUNDLE and a name of its own. home-screen open DEVICE: how long the home screen takes
// from the start of the process until the icons of the first page are drawn, how long turning to
// every page takes, and the memory held.

using namespace dubrix;
namespace fs = std::filesystem;

namespace {

int makeDevice(const fs::path& root, int count, const fs::path& bundle) {
    const Registry registry(root);
    for (const std::string_view path : {Registry::applicationPath, Registry::registryPath})
        fs::create_directories(registry.hostPath(path));
    auto info = PropertyList::parse(readWholeFile(bundle / "Info.plist", 1 << 20).value_or(""));
    if (!info)
        return 1;
    for (int number = 1; number <= count; ++number) {
        const std::string identifier = "com.example.bench" + std::to_string(number);
        const std::string path =
            std::string(Registry::applicationPath) + "/" + identifier + "/It.app";
        fs::create_directories(registry.hostPath(path));
        for (const auto& file : fs::directory_iterator(bundle))
            if (file.path().extension() == ".png")
                fs::copy(file.path(), registry.hostPath(path) / file.path().filename());
        info->setValueForKey("CFBundleIdentifier", PropertyList::string(identifier));
        info->setValueForKey("CFBundleDisplayName",
                             PropertyList::string("Application " + std::to_string(number)));
        if (!replaceWholeFile(registry.hostPath(path) / "Info.plist", info->xml(),
                              Durability::Process) ||
            !registry.enter(identifier, path))
            return 1;
    }
    return 0;
}

/// Milliseconds since the process was started, as the system counts.
double sinceStart() {
    std::ifstream file("/proc/self/stat");
    std::string field;
    for (int number = 0; number < 22; ++number)
        file >> field;
    timespec now{};
    ::clock_gettime(CLOCK_BOOTTIME, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6 -
           std::stod(field) * 1e3 / static_cast<double>(::sysconf(_SC_CLK_TCK));
}

std::string memory() {
    std::ifstream status("/proc/self/status");
    std::string text;
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("VmRSS") || line.starts_with("VmHWM") || line.starts_with("RssAnon"))
            text += line + "  ";
    std::ranges::replace(text, '\t', ' ');
    return text;
}

void collect(QQuickItem* item, const char* type, QList<QQuickItem*>& found) {
    if (item->inherits(type))
        found.append(item);
    for (QQuickItem* child : item->childItems())
        collect(child, type, found);
}

/// Whether every icon in sight is there, of `wanted` or more pictures, wallpaper and dock included.
bool isComplete(QQuickWindow& window, qsizetype wanted) {
    QList<QQuickItem*> images;
    collect(window.contentItem(), "QQuickImage", images);
    const QRectF sight(0, 0, window.width(), window.height());
    qsizetype ready = 0;
    for (const QQuickItem* image : images) {
        const QRectF place = image->mapRectToScene({0, 0, image->width(), image->height()});
        if (!sight.intersects(place))
            continue;
        if (image->property("status").toInt() != 1)
            return false;
        ++ready;
    }
    return ready >= wanted;
}

/// Looks at the window after each frame: first until its icons are there, then page after page.
class Watch {
public:
    Watch(QQuickWindow& window, int applications) : window_(window), applications_(applications) {
        QObject::connect(
            &window, &QQuickWindow::frameSwapped, &window, [this] { look(); },
            Qt::QueuedConnection);
    }

private:
    void look() {
        window_.update();
        const bool resting = !list_ || !list_->property("moving").toBool();
        // Wallpaper, dock and, but for the last page, more icons than these.
        if (!resting || !isComplete(window_, list_ ? 3 : 20))
            return;
        if (!list_) {
            std::cout << "first icons after " << sinceStart() << " ms; " << memory() << std::endl;
            QList<QQuickItem*> lists;
            collect(window_.contentItem(), "QQuickListView", lists);
            list_ = lists.constFirst();
        } else {
            times_.push_back(static_cast<double>(time_.nsecsElapsed()) / 1e6);
        }
        if (++page_ >= (applications_ + 23) / 24)
            return end();
        time_.start();
        list_->setProperty("currentIndex", page_);
    }

    void end() {
        std::ranges::sort(times_);
        if (!times_.empty())
            std::cout << "page turned and its icons there: median " << times_[times_.size() / 2]
                      << " ms, longest " << times_.back() << " ms; " << memory() << std::endl;
        QCoreApplication::exit(0);
    }

    QQuickWindow& window_;
    int applications_;
    QQuickItem* list_ = nullptr;
    int page_ = 0;
    QElapsedTimer time_;
    std::vector<double> times_;
};

} // namespace

int main(int argc, char** argv) {
    if (argc == 5 && std::string_view(argv[1]) == "make")
        return makeDevice(argv[2], std::stoi(argv[3]), argv[4]);
    if (argc < 3 || std::string_view(argv[1]) != "open")
        return 2;
    QGuiApplication application(argc, argv);
    HomeApplications applications(argv[2]);
    chooseFont(ownFontFamily());
    HomeScreen home(applications, nullptr, "/");
    QQmlApplicationEngine engine;
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    engine.addImageProvider(QLatin1String(Wallpaper::name), new Wallpaper);
    engine.addImageProvider(QLatin1String(ApplicationIconProvider::name),
                            new ApplicationIconProvider(iconOfBundle));
    engine.setInitialProperties({{QStringLiteral("home"), QVariant::fromValue(&home)}});
    engine.load(QUrl(QStringLiteral("qrc:/qt/qml/DubrixHome/HomeWindow.qml")));
    auto& window = *qobject_cast<QQuickWindow*>(engine.rootObjects().constFirst());
    const Watch watch(window, argc > 3 ? std::stoi(argv[3]) : 0);
    return QGuiApplication::exec();
}
