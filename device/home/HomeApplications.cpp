#include "device/home/HomeApplications.h"

#include "controls/NameOrder.h"

namespace dubrix {

namespace {

/// Milliseconds; far below the second within which a change is to be seen.
constexpr int pauseAfterChange = 60;

QString pathText(const std::filesystem::path& path) {
    return QString::fromStdString(path.native());
}

} // namespace

HomeApplications::HomeApplications(const std::filesystem::path& root, QObject* parent)
    : QObject(parent),
      registry_(root) {
    pause_.setSingleShot(true);
    pause_.setInterval(pauseAfterChange);
    connect(&pause_, &QTimer::timeout, this, &HomeApplications::read);
    connect(&watcher_, &QFileSystemWatcher::directoryChanged, this, [this] {
        if (!pause_.isActive())
            pause_.start();
    });
    read();
}

HomeApplications::~HomeApplications() {
    if (reader_.joinable())
        reader_.join();
}

/// The folder above is watched, too: the registry itself may be missing, or be made anew.
void HomeApplications::watch() {
    for (const std::string_view path : {Registry::bundlePath, Registry::registryPath}) {
        const QString folder = pathText(registry_.hostPath(path));
        if (!watcher_.directories().contains(folder))
            watcher_.addPath(folder);
    }
}

void HomeApplications::read() {
    if (reading_) {
        changedMeanwhile_ = true;
        return;
    }
    watch(); // before reading: what changes in between is noticed
    reading_ = true;
    changedMeanwhile_ = false;
    if (reader_.joinable())
        reader_.join();
    reader_ = std::thread([this] {
        auto applications = homeApplications(installedApplications(registry_), registry_);
        QMetaObject::invokeMethod(
            this, [this, read = std::move(applications)]() mutable { show(std::move(read)); },
            Qt::QueuedConnection);
    });
}

void HomeApplications::show(std::vector<HomeApplication> applications) {
    reading_ = false;
    if (!loaded_ || applications != applications_) {
        applications_ = std::move(applications);
        QStringList arrived;
        QHash<QString, int> positions;
        for (const HomeApplication& application : applications_) {
            positions.insert(application.identifier, static_cast<int>(positions.size()));
            if (loaded_ && !positions_.contains(application.identifier))
                arrived.append(application.identifier);
        }
        positions_ = std::move(positions);
        arrivals_ = QSet<QString>(arrived.cbegin(), arrived.cend());
        loaded_ = true;
        Q_EMIT changed();
        if (!arrived.isEmpty())
            Q_EMIT this->arrived(arrived);
    }
    if (changedMeanwhile_)
        read();
}

std::vector<HomeApplication> homeApplications(const std::vector<InstalledApplication>& all,
                                              const Registry& registry) {
    std::vector<HomeApplication> applications;
    for (const InstalledApplication& each : all) {
        if (each.isSystemApplication || each.isHidden)
            continue;
        const QString identifier = QString::fromStdString(each.identifier);
        const QString name = QString::fromStdString(each.name).simplified();
        applications.push_back({identifier, name.isEmpty() ? identifier : name,
                                registry.hostPath(each.path).native()});
    }
    sortByName(applications, &HomeApplication::name, &HomeApplication::identifier);
    return applications;
}

} // namespace dubrix
