#include "device/BundleStore.h"

#include "device/FileTree.h"

#include <fcntl.h>
#include <filesystem>
#include <set>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statvfs.h>

namespace dubrix {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view stagingPrefix = ".installing-";
constexpr std::string_view removalPrefix = ".removing-";

std::string stagingName(const std::string& uuid) {
    return std::string(stagingPrefix) + uuid;
}

/// The folders of bundles to which the registry leads; nothing when it cannot be read, so that an
/// unreadable registry never makes every application a leftover.
std::optional<std::set<std::string>> registeredFolders(const Registry& registry) {
    const Descriptor folder =
        openFolderAt(AT_FDCWD, registry.hostPath(Registry::registryPath).native());
    const auto identifiers = folder.isOpen() ? namesIn(folder.get()) : std::nullopt;
    if (!identifiers)
        return std::nullopt;
    const std::string bundles = std::string(Registry::applicationPath) + "/";
    std::set<std::string> folders;
    for (const std::string& identifier : *identifiers)
        if (const auto target = registry.targetOf(identifier)) {
            const std::string_view path = *target;
            if (path.starts_with(bundles))
                folders.emplace(
                    path.substr(bundles.size(), path.find('/', bundles.size()) - bundles.size()));
        }
    return folders;
}

} // namespace

BundleStore::BundleStore(const Registry& registry, Descriptor bundle, Descriptor applications)
    : registry_(registry),
      bundle_(std::move(bundle)),
      applications_(std::move(applications)) {}

Result<BundleStore> BundleStore::open(const Registry& registry) {
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
    while (::flock(bundle.get(), LOCK_EX) != 0)
        if (errno != EINTR)
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

void BundleStore::sweep(const StepHook& step) {
    const std::vector<std::string> none;
    for (const std::string& name : namesIn(bundle_.get()).value_or(none))
        if (name.starts_with(Registry::temporaryLinkPrefix))
            ::unlinkat(bundle_.get(), name.c_str(), 0);

    const std::optional<std::set<std::string>> registered = registeredFolders(registry_);
    for (std::string name : namesIn(applications_.get()).value_or(none)) {
        if (registered && isUuid(name) && !registered->contains(name)) {
            // Aside first: nobody finds half a bundle under a name that was once a whole one.
            const std::string aside = std::string(removalPrefix) + name;
            if (::renameat(applications_.get(), name.c_str(), applications_.get(), aside.c_str()) !=
                0)
                continue;
            name = aside;
            step("bundle set aside");
        }
        if (name.starts_with(stagingPrefix) || name.starts_with(removalPrefix)) {
            removeTreeAt(applications_.get(), name);
            step("leftover removed");
        }
    }
}

Result<BundleStore::Room> BundleStore::room() const {
    struct statvfs status {};
    if (::fstatvfs(applications_.get(), &status) != 0)
        return systemFailure("cannot tell the room on the device");
    return Room{std::uint64_t{status.f_bavail} * status.f_frsize, status.f_frsize};
}

} // namespace dubrix
