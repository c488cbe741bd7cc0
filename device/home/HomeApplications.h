#pragma once

#include "device/registry/InstalledApplications.h"
#include "device/registry/Registry.h"

#include <QFileSystemWatcher>
#include <QHash>
#include <QObject>
#include <QSet>
#include <QTimer>
#include <qqmlregistration.h>
#include <thread>
#include <vector>

namespace dubrix {

struct HomeApplication {
    QString identifier;
    QString name;
    /// The bundle folder on this machine.
    std::string folder;

    bool operator==(const HomeApplication&) const = default;
};

/// The applications that a home screen shows: those registered that do not ask to be hidden, in the
/// order in which people look for names. It is told by the file system when the registry changes,
/// reads on a thread of its own and keeps what it knows until something newer has been read.
class HomeApplications : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the program")
    Q_PROPERTY(int count READ count NOTIFY changed)
    /// Whether the list has been read at least once.
    Q_PROPERTY(bool loaded READ isLoaded NOTIFY changed)

public:
    /// Starts to read and to watch the device at `root`.
    explicit HomeApplications(const std::filesystem::path& root, QObject* parent = nullptr);
    ~HomeApplications() override;

    const std::vector<HomeApplication>& all() const { return applications_; }
    int count() const { return static_cast<int>(applications_.size()); }
    bool isLoaded() const { return loaded_; }
    /// The application's place in the order, -1 when it is not there.
    Q_INVOKABLE int positionOf(const QString& identifier) const {
        return positions_.value(identifier, -1);
    }
    /// Whether the application has come since the list was first read and nobody has asked so yet.
    bool takeArrival(const QString& identifier) { return arrivals_.remove(identifier); }

Q_SIGNALS:
    void changed();
    /// After `changed`: these have come since the list was read before.
    void arrived(const QStringList& identifiers);

private:
    void watch();
    void read();
    void show(std::vector<HomeApplication> applications);

    const Registry registry_;
    QFileSystemWatcher watcher_;
    /// Lets an installation's burst of changes pass as one.
    QTimer pause_;
    std::thread reader_;
    bool reading_ = false;
    bool changedMeanwhile_ = false;
    bool loaded_ = false;
    std::vector<HomeApplication> applications_;
    QHash<QString, int> positions_;
    QSet<QString> arrivals_;
};

/// The registered applications of `all` that are to be seen, sorted.
std::vector<HomeApplication> homeApplications(const std::vector<InstalledApplication>& all,
                                              const Registry& registry);

} // namespace dubrix
