#include "device/installer/Installer.h"

#include "device/archive/ArchivedBundle.h"
#include "device/archive/BundleExport.h"
#include "device/archive/Interruption.h"
#include "device/archive/ZipDirectory.h"
#include "device/archive/ZipEntryReader.h"
#include "device/installer/BundleStore.h"
#include "device/installer/BundleUnpacker.h"
#include "files/FileTree.h"
#include "files/ReplacementFile.h"
#include "formats/lists/PropertyList.h"

#include <algorithm>
#include <fcntl.h>
#include <sys/stat.h>

namespace dubrix {

namespace fs = std::filesystem;

namespace {

/// The system allows no longer text in a link.
constexpr std::size_t longestLink = 4095;
/// All links of a bundle together: following each to its end takes time for every byte.
constexpr std::size_t mostLinkBytes = std::size_t{1} << 20;

Result<BundleInfo> readInfo(const ArchivedBundle& bundle, ZipEntryReader& reader) {
    const ZipEntry* entry = bundle.file("Info.plist");
    if (entry == nullptr)
        return Failure{"has no Info.plist"};
    Result<std::string> bytes = reader.readWhole(*entry, BundleInfo::largestInfoPlist);
    if (!bytes)
        return bytes.failure();
    const std::optional<PropertyList> list = PropertyList::parse(*bytes);
    if (!list || !list->isDictionary())
        return Failure{"has a damaged Info.plist"};
    BundleInfo info = BundleInfo::from(*list, bundle.folderName);
    if (!Registry::isUsableIdentifier(info.identifier.value_or("")))
        return Failure{"has no usable CFBundleIdentifier in its Info.plist"};
    return info;
}

Result<LinkTargets> readLinks(const ArchivedBundle& bundle, ZipEntryReader& reader) {
    LinkTargets targets;
    std::size_t left = mostLinkBytes;
    for (const ZipEntry& link : bundle.links) {
        Result<std::string> text = reader.readWhole(link, std::min(longestLink, left));
        if (!text)
            return text.failure();
        left -= text->size();
        targets.emplace(link.name, std::move(*text));
    }
    if (Outcome done = checkLinkTargets(targets); !done)
        return done.failure();
    return targets;
}

Failure about(const std::string& subject, const Failure& failure) {
    return Failure{subject + ": " + failure.text, failure.isOfAnotherKind};
}

/// Whether the open file can take an archive.
Outcome checkEmptyFile(int file) {
    struct stat status{};
    const int flags = ::fcntl(file, F_GETFL);
    if (flags < 0 || ::fstat(file, &status) != 0)
        return systemFailure("cannot be written");
    if (!S_ISREG(status.st_mode) || (flags & O_ACCMODE) == O_RDONLY || (flags & O_PATH) != 0 ||
        status.st_size != 0)
        return Failure{"cannot be written: not an empty regular file open for writing"};
    return Success{};
}

bool makeEmpty(int file) {
    return ::ftruncate(file, 0) == 0 && ::lseek(file, 0, SEEK_SET) == 0;
}

/// What could be put back makes way for it.
Outcome checkRoom(BundleStore& store, const ArchivedBundle& bundle) {
    for (const bool isLast : {false, true}) {
        Result<BundleStore::Room> room = store.room();
        if (!room)
            return room.failure();
        if (bundle.roomNeeded(room->block) <= room->free)
            break;
        if (isLast)
            return Failure{"not enough room on the device"};
        store.forgetKept();
        store.sweep();
    }
    return Success{};
}

} // namespace

struct Installer::Package {
    int archive;
    const ArchivedBundle& bundle;
    const LinkTargets& links;
};

Installer::Installer(const fs::path& root, Progress progress, std::function<void()> waiting)
    : registry_(root),
      progress_(std::move(progress)),
      waiting_(std::move(waiting)) {}

Result<Installer::Installed> Installer::install(const fs::path& file) {
    const std::string subject = file.filename().native();
    // Not blocking: opening a named pipe must not wait for a writer.
    const Descriptor archive(::open(file.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (!archive.isOpen())
        return systemFailure(subject + ": cannot be opened");
    Result<Installed> installed = installArchive(archive.get());
    return installed ? std::move(installed) : about(subject, installed.failure());
}

Result<Installer::Installed> Installer::installArchive(int archive) {
    Result<std::vector<ZipEntry>> entries = readZipDirectory(archive);
    if (!entries)
        return entries.failure();
    Result<ArchivedBundle> bundle = findBundle(std::move(*entries));
    if (!bundle)
        return bundle.failure();
    ZipEntryReader reader(archive);
    Result<BundleInfo> info = readInfo(*bundle, reader);
    if (!info)
        return info.failure();
    Result<LinkTargets> links = readLinks(*bundle, reader);
    if (!links)
        return links.failure();
    if (belongsToSystem(*info->identifier))
        return Failure{*info->identifier + " is a system application and cannot be replaced"};
    Installed installed{std::move(*info)};
    if (Outcome done = place({archive, *bundle, *links}, installed); !done)
        return done.failure();
    return installed;
}

Outcome Installer::place(const Package& package, Installed& installed) {
    Result<BundleStore> store = BundleStore::open(registry_, waiting_);
    if (!store)
        return store.failure();
    store->sweep();
    if (Outcome done = checkRoom(*store, package.bundle); !done)
        return done;

    Result<BundleStore::Staging> staging = store->makeStaging();
    if (!staging)
        return staging.failure();
    Outcome done = unpackBundle(package.bundle, package.links, package.archive,
                                staging->folder.get(), progress_);
    if (done)
        done = store->publish(*staging);
    if (!done) {
        store->discard(*staging);
        return done;
    }
    const std::string& identifier = *installed.info.identifier;
    if (const auto earlier = registry_.bundleOf(identifier))
        installed.earlier = earlier->info ? earlier->info->version.value_or("") : "";
    done = store->enter(identifier, *staging, package.bundle.folderName);
    // Whichever bundle the registry does not name is a leftover now: the old one after a success,
    // the new one otherwise.
    store->sweep();
    return done;
}

Result<Installer::Removed> Installer::uninstall(const std::string& identifier, Removal removal) {
    Result<Removed> removed = uninstallApplication(identifier, removal);
    return removed ? removed : about(identifier, removed.failure());
}

Result<Installer::Removed> Installer::uninstallApplication(const std::string& identifier,
                                                           Removal removal) {
    if (belongsToSystem(identifier))
        return Failure{"is a system application and cannot be removed"};
    if (!registry_.isInstalled(identifier))
        return Failure{"is not installed"};
    Result<BundleStore> store = BundleStore::open(registry_, waiting_);
    if (!store)
        return store.failure();
    store->sweep();
    // Asked again: another installer may have been first.
    if (!registry_.isInstalled(identifier))
        return Failure{"is not installed"};
    Removed removed;
    if (removal == Removal::Undoable)
        removed.isKept = store->keep(identifier);
    else
        store->forgetKept();
    if (Outcome done = store->strike(identifier); !done)
        return done.failure();
    store->sweep();
    return removed;
}

Outcome Installer::putBack(const std::string& identifier) {
    Result<BundleStore> store = BundleStore::open(registry_, waiting_);
    Outcome done = store ? store->putBack(identifier) : store.failure();
    return done ? done : about(identifier, done.failure());
}

Outcome Installer::forgetRemoved() {
    Result<BundleStore> store = BundleStore::open(registry_, waiting_);
    if (!store)
        return store.failure();
    store->forgetKept();
    store->sweep();
    return Success{};
}

Outcome Installer::exportTo(const std::string& identifier, const fs::path& file) const {
    const std::string name = file.filename().native();
    std::optional<ReplacementFile> archive = ReplacementFile::make(file, 0666);
    if (!archive)
        return systemFailure(name + ": cannot be written");
    if (Outcome done = pack(identifier, name, archive->descriptor()); !done)
        return done;
    if (!archive->putInPlace(Durability::PowerCut))
        return systemFailure(name + ": cannot be written");
    // The name, too; a folder that cannot be flushed has nothing to be flushed.
    const Descriptor folder = openFolderAt(AT_FDCWD, (file.parent_path() / ".").native());
    if (folder.isOpen())
        ::fsync(folder.get());
    return Success{};
}

Outcome Installer::exportTo(const std::string& identifier, const fs::path& file,
                            int archive) const {
    const std::string name = file.filename().native();
    if (Outcome done = checkEmptyFile(archive); !done)
        return about(name, done.failure());
    Outcome done = makeEmpty(archive) ? pack(identifier, name, archive) : systemFailure(name);
    if (done && ::fsync(archive) != 0)
        done = systemFailure(name + ": cannot be written");
    if (!done)
        makeEmpty(archive);
    return done;
}

Outcome Installer::pack(const std::string& identifier, const std::string& fileName,
                        int archive) const {
    for (int tries = 0; tries < Registry::mostReplacements; ++tries) {
        const std::optional<std::string> path = registry_.pathOf(identifier);
        if (!path && registry_.isRegistered(identifier))
            return Failure{identifier + ": is registered, but leads to no application's folder"};
        if (!path)
            return Failure{identifier + ": is not installed"};
        const Descriptor bundle = registry_.openFolder(*path);
        if (!bundle.isOpen())
            return systemFailure(identifier + ": cannot read " + *path);
        Outcome done =
            packBundle(bundle.get(), fs::path(*path).filename().native(), archive, progress_);
        // What is removed is moved aside first: what is in place still has been whole all along.
        if (isSameFile(registry_.openFolder(*path).get(), bundle.get()))
            return done ? done : about(fileName, done.failure());
        if (Interruption::isAsked() || !makeEmpty(archive))
            break;
    }
    return Failure{fileName + ": cannot be written: the application changes all the time"};
}

Result<std::vector<Installer::Application>> Installer::list() const {
    Result<std::vector<std::string>> identifiers = registry_.names();
    if (!identifiers)
        return identifiers.failure();
    std::vector<Application> applications;
    for (const std::string& identifier : *identifiers)
        if (const std::optional<Registry::Bundle> bundle = registry_.bundleOf(identifier)) {
            const std::optional<BundleInfo>& info = bundle->info;
            applications.push_back(
                {identifier, info ? info->displayName : fs::path(bundle->path).stem().native(),
                 info ? info->version.value_or("") : "", bundle->path});
        }
    return applications;
}

bool Installer::belongsToSystem(const std::string& identifier) const {
    const auto target = registry_.targetOf(identifier);
    return (target && target->starts_with(std::string(Registry::systemPath) + "/")) ||
           registry_.isSystemApplication(identifier);
}

} // namespace dubrix
