#include "device/installer/BundleStore.h"

#include "files/FileTree.h"

#include <condition_variable>
#include <fcntl.h>
#include <filesystem>
#include <mutex>
#include <set>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <thread>

namespace dubrix {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view stagingPrefix = ".installing-";
constexpr std::string_view removalPrefix = ".removing-";
const std::string removedName(Registry::removedPath.substr(Registry::bundlePath.size() + 1));

std::string stagingName(const std::string& uuid) {
    return std::string(stagingPrefix) + uuid;
}

/// The folders of bundles to which the records lead; nothing when one cannot be read, so that an
/// unreadable record never makes every application a leftover.
std::optional<std::set<std::string>>
foldersIn(std::initializer_list<std::reference_wrapper<const Registry>> records) {
    const std::string bundles = std::string(Registry::applicationPath) + "/";
    std::set<std::string> folders;
    for (const Registry& record : records) {
        Result<std::vector<std::string>> identifiers = record.names();
        if (!identifiers)
            return std::nullopt;
        for (const std::string& identifier : *identifiers)
            if (const auto target = record.targetOf(identifier)) {
                const std::string_view path = *target;
                if (path.starts_with(bundles))
                    folders.emplace(path.substr(bundles.size(),
                                                path.find('/', bundles.size()) - bundles.size()));
            }
    }
    return folders;
}

/// Waits for the lock on an open folder; calls `waiting` once when that takes its time.
bool lock(int folder, const std::function<void()>& waiting) {
    if (::flock(folder, LOCK_EX | LOCK_NB) == 0)
        return true;
    std::mutex mutex;
    std::condition_variable_any hasLock;
    const std::jthread notice([&](const std::stop_token& done) {
        std::unique_lock held(mutex);
        hasLock.wait_for(held, done, BundleStore::patience, [] { return false; });
        if (waiting && !done.stop_requested())
            waiting();
    });
    while (::flock(folder, LOCK_EX) != 0)
        if (errno != EINTR)
            return false;
    return true;
}

} // namespace

BundleStore::BundleStore(const Registry& registry, Descriptor bundle, Descriptor applications)
    : registry_(registry),
      removed_(registry.removed()),
      bundle_(std::move(bundle)),
      applications_(std::move(applications)) {}

Result<BundleStore> BundleStore::open(const Registry& registry,
                                      const std::function<void()>& waiting) {
    for (const std::string_view path : {Registry::applicationPath, Registry::registryPath}) {
        std::error_code error;
        fs::create_directories(registry.hostPath(path), error);
        if (error)
            return systemFailure("cannot make " + std::string(path), error.value());
    }
    const std::string path(Registry::bundlePath);
    Descriptor bundle = openFolderAt(AT_FDCWD, registry.hostPath(path).native());
    if (!bundle.isOpen())
        return systemFailure("cannot open " + path);
    if (!lock(bundle.get(), waiting))
        return systemFailure("cannot lock " + path);
    Descriptor applications = openFolderAt(bundle.get(), "Application");
    if (!applications.isOpen())
        return systemFailure("cannot open " + std::string(Registry::applicationPath));
    return BundleStore(registry, std::move(bundle), std::move(applications));
}

Result<BundleStore::Staging> BundleStore::makeStaging() {
    Staging staging;
    staging.uuid = randomUuid();
    const std::string name = stagingName(staging.uuid);
    if (::mkdirat(applications_.get(), name.c_str(), 0755) == 0)
        staging.folder = openFolderAt(applications_.get(), name);
    // The mask must not close the folder to those who run applications.
    if (!staging.folder.isOpen() || ::fchmod(staging.folder.get(), 0755) != 0)
        return systemFailure("cannot make a folder to unpack into");
    return staging;
}

Outcome BundleStore::publish(const Staging& staging) {
    if (::renameat(applications_.get(), stagingName(staging.uuid).c_str(), applications_.get(),
                   staging.uuid.c_str()) != 0)
        return systemFailure("cannot put the application in place");
    return Success{};
}

void BundleStore::discard(const Staging& staging) {
    removeTreeAt(applications_.get(), stagingName(staging.uuid));
}

Outcome BundleStore::enter(const std::string& identifier, const Staging& staging,
                           const std::string& folderName) {
    const std::string path =
        std::string(Registry::applicationPath) + "/" + staging.uuid + "/" + folderName;
    // All of the file system at once: each file flushed alone would wait for the disk alone.
    const auto flushBundle = [this]() -> Outcome {
        if (::syncfs(bundle_.get()) != 0)
            return systemFailure("cannot write the application to the disk");
        return Success{};
    };
    Outcome done = registry_.enter(identifier, path, flushBundle);
    return done ? registry_.flush() : done;
}

Outcome BundleStore::strike(const std::string& identifier) {
    Outcome done = registry_.strike(identifier);
    return done ? registry_.flush() : done;
}

bool BundleStore::keep(const std::string& identifier) {
    forgetKept();
    ::mkdirat(bundle_.get(), removedName.c_str(), 0755);
    const auto target = registry_.targetOf(identifier);
    return target && removed_.names() && removed_.enter(identifier, *target);
}

Outcome BundleStore::putBack(const std::string& identifier) {
    const auto path = removed_.pathOf(identifier);
    if (!path)
        return Failure{"cannot be put back any more"};
    if (registry_.isRegistered(identifier))
        return Failure{"has been installed again meanwhile"};
    Outcome done = registry_.enterNew(identifier, *path);
    if (done)
        done = registry_.flush();
    if (done)
        forgetKept();
    return done;
}

void BundleStore::forgetKept() {
    if (Result<std::vector<std::string>> identifiers = removed_.names())
        for (const std::string& identifier : *identifiers)
            static_cast<void>(removed_.strike(identifier));
    // Or whatever else lies there, which nobody here has made.
    if (::unlinkat(bundle_.get(), removedName.c_str(), AT_REMOVEDIR) != 0 && errno == ENOTDIR)
        ::unlinkat(bundle_.get(), removedName.c_str(), 0);
}

void BundleStore::sweep() {
    const std::vector<std::string> none;
    for (const std::string& name : namesIn(bundle_.get()).value_or(none))
        if (name.starts_with(Registry::temporaryLinkPrefix))
            ::unlinkat(bundle_.get(), name.c_str(), 0);
    // A removal, or its undoing, that did not come to its end.
    if (Result<std::vector<std::string>> kept = removed_.names())
        for (const std::string& identifier : *kept)
            if (removed_.targetOf(identifier) == registry_.targetOf(identifier))
                static_cast<void>(removed_.strike(identifier));

    const std::optional<std::set<std::string>> owned = foldersIn({registry_, removed_});
    std::optional<bool> isFlushed;
    // An installer killed before it could flush them leaves links that are not yet on the disk,
    // where those before them still lead to what seems to be a leftover.
    const auto isLeftover = [&](const std::string& name) {
        if (!owned || !isUuid(name) || owned->contains(name))
            return false;
        if (!isFlushed)
            isFlushed = static_cast<bool>(registry_.flush());
        return *isFlushed;
    };
    for (std::string name : namesIn(applications_.get()).value_or(none)) {
        if (isLeftover(name)) {
            // Aside first: nobody finds half a bundle under a name that was once a whole one.
            const std::string aside = std::string(removalPrefix) + name;
            if (::renameat(applications_.get(), name.c_str(), applications_.get(), aside.c_str()) !=
                0)
                continue;
            name = aside;
        }
        if (name.starts_with(stagingPrefix) || name.starts_with(removalPrefix))
            removeTreeAt(applications_.get(), name);
    }
}

Result<BundleStore::Room> BundleStore::room() const {
    struct statvfs status{};
    if (::fstatvfs(applications_.get(), &status) != 0)
        return systemFailure("cannot tell the room on the device");
    return Room{std::uint64_t{status.f_bavail} * status.f_frsize, status.f_frsize};
}

} // namespace dubrix
