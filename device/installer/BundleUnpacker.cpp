#include "device/installer/BundleUnpacker.h"

#include "device/archive/ZipEntryReader.h"
#include "files/Descriptor.h"
#include "files/FileTree.h"
#include "files/FileWork.h"

#include <array>
#include <ctime>
#include <fcntl.h>
#include <memory>
#include <mutex>
#include <numeric>
#include <sys/stat.h>

namespace dubrix {

namespace {

Failure cannotUnpack(const std::string& name) {
    return systemFailure("cannot be unpacked at " + name);
}

/// What futimens and utimensat take to give a file the time of change that an archive tells. An
/// absent or absurd one, before 1970 or more than a day ahead, is left as it is.
std::array<timespec, 2> entryTimes(std::optional<std::time_t> modified) {
    constexpr std::time_t day = std::time_t{24} * 60 * 60;
    const bool isSensible = modified && *modified >= 0 && *modified <= std::time(nullptr) + day;
    const timespec unchanged{0, UTIME_OMIT};
    return {unchanged, isSensible ? timespec{*modified, 0} : unchanged};
}

bool setTime(int root, const ZipEntry& entry) {
    return ::utimensat(root, entry.name.c_str(), entryTimes(entry.modified).data(),
                       AT_SYMLINK_NOFOLLOW) == 0;
}

/// Sums up what several threads have done.
class Counting {
public:
    Counting(std::uint64_t total, const Progress& progress) : total_(total), progress_(progress) {}

    void add(std::uint64_t bytes) {
        if (!progress_)
            return;
        const std::scoped_lock lock(mutex_);
        done_ += bytes;
        progress_(done_, total_);
    }

private:
    const std::uint64_t total_;
    const Progress& progress_;
    std::mutex mutex_; // of what follows
    std::uint64_t done_ = 0;
};

Outcome unpack(const ZipEntry& entry, ZipEntryReader& reader, int root, Counting& counting) {
    Descriptor file(::openat(root, entry.name.c_str(),
                             O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!file.isOpen())
        return cannotUnpack(entry.name);
    Outcome done = reader.read(entry, [&](std::string_view bytes) -> Outcome {
        if (!writeAll(file.get(), bytes))
            return cannotUnpack(entry.name);
        counting.add(bytes.size());
        return Success{};
    });
    // The bundle will have to be on the disk before it is registered: the disk may begin while the
    // rest is unpacked. Small files are better left for the end, when they are many at once.
    if (done && entry.size >= largeFile)
        ::sync_file_range(file.get(), 0, 0, SYNC_FILE_RANGE_WRITE);
    if (done && ::futimens(file.get(), entryTimes(entry.modified).data()) != 0)
        return cannotUnpack(entry.name);
    // After the writing and past the process's mask, which would take bits away.
    if (done && (::fchmod(file.get(), entry.permissions) != 0 || !file.close()))
        return cannotUnpack(entry.name);
    return done;
}

/// Unpacks the files of a bundle from the open file `archive` into folders that are there already,
/// below the open folder `root`, on as many processors as are worth it, in memory that does not
/// grow with the archive (see workOnFiles). `progress`, which counts bytes, is called by one thread
/// at a time, not always the same.
Outcome unpackFiles(const std::vector<ZipEntry>& files, int archive, int root,
                    const Progress& progress) {
    std::vector<std::uint64_t> sizes;
    sizes.reserve(files.size());
    for (const ZipEntry& file : files)
        sizes.push_back(file.size);
    Counting counting(std::accumulate(sizes.begin(), sizes.end(), std::uint64_t{0}), progress);
    return workOnFiles(sizes, [&]() -> FileWork {
        return [&, reader = std::make_shared<ZipEntryReader>(archive)](std::size_t index) {
            return unpack(files[index], *reader, root, counting);
        };
    });
}

} // namespace

Outcome unpackBundle(const ArchivedBundle& bundle, const LinkTargets& links, int archive,
                     int staging, const Progress& progress) {
    if (::mkdirat(staging, bundle.folderName.c_str(), 0700) != 0)
        return cannotUnpack(bundle.folderName);
    const Descriptor root = openFolderAt(staging, bundle.folderName);
    if (!root.isOpen())
        return cannotUnpack(bundle.folderName);
    for (const ZipEntry& folder : bundle.folders)
        if (::mkdirat(root.get(), folder.name.c_str(), 0700) != 0)
            return cannotUnpack(folder.name);
    if (Outcome done = unpackFiles(bundle.files, archive, root.get(), progress); !done)
        return done;
    for (const auto& [name, text] : links)
        if (::symlinkat(text.c_str(), root.get(), name.c_str()) != 0)
            return cannotUnpack(name);
    for (const ZipEntry& link : bundle.links)
        if (!setTime(root.get(), link))
            return cannotUnpack(link.name);
    // Children before parents: a folder may be closed even to a look at its children.
    for (auto folder = bundle.folders.rbegin(); folder != bundle.folders.rend(); ++folder)
        if (!setTime(root.get(), *folder) ||
            ::fchmodat(root.get(), folder->name.c_str(), folder->permissions, 0) != 0)
            return cannotUnpack(folder->name);
    if (::futimens(root.get(), entryTimes(bundle.modified).data()) != 0 ||
        ::fchmod(root.get(), bundle.permissions) != 0)
        return cannotUnpack(bundle.folderName);
    return Success{};
}

} // namespace dubrix
