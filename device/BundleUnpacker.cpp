#include "device/BundleUnpacker.h"

#include "device/Descriptor.h"
#include "device/FileTree.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace dubrix {

namespace {

Failure cannotUnpack(const std::string& name) {
    return systemFailure("cannot be unpacked at " + name);
}

/// Adds up the bytes that have been unpacked of all.
class ByteCount {
public:
    ByteCount(const std::vector<ZipEntry>& files, const Progress& progress) : progress_(progress) {
        for (const ZipEntry& file : files)
            total_ += file.size;
    }

    void add(std::uint64_t bytes) {
        done_ += bytes;
        if (progress_)
            progress_(done_, total_);
    }

private:
    std::uint64_t done_ = 0;
    std::uint64_t total_ = 0;
    const Progress& progress_;
};

Outcome unpackFile(const ZipEntry& entry, ZipEntryReader& reader, int folder, ByteCount& count) {
    Descriptor file(::openat(folder, entry.name.c_str(),
                             O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!file.isOpen())
        return cannotUnpack(entry.name);
    Outcome done = reader.read(entry, [&](std::string_view bytes) -> Outcome {
        if (!writeAll(file.get(), bytes))
            return cannotUnpack(entry.name);
        count.add(bytes.size());
        return Success{};
    });
    // After the writing and past the process's mask, which would take bits away.
    if (done && (::fchmod(file.get(), entry.permissions) != 0 || !file.close()))
        return cannotUnpack(entry.name);
    return done;
}

} // namespace

Outcome unpackBundle(const ArchivedBundle& bundle, const LinkTargets& links, ZipEntryReader& reader,
                     int staging, const StepHook& step, const Progress& progress) {
    if (::mkdirat(staging, bundle.folderName.c_str(), 0700) != 0)
        return cannotUnpack(bundle.folderName);
    const Descriptor root = openFolderAt(staging, bundle.folderName);
    if (!root.isOpen())
        return cannotUnpack(bundle.folderName);
    for (const ZipEntry& folder : bundle.folders)
        if (::mkdirat(root.get(), folder.name.c_str(), 0700) != 0)
            return cannotUnpack(folder.name);
    step("folders made");
    ByteCount count(bundle.files, progress);
    for (const ZipEntry& file : bundle.files) {
        if (Outcome done = unpackFile(file, reader, root.get(), count); !done)
            return done;
        step("file unpacked");
    }
    for (const auto& [name, text] : links)
        if (::symlinkat(text.c_str(), root.get(), name.c_str()) != 0)
            return cannotUnpack(name);
    step("links made");
    // Children before parents: a folder may be closed even to a look at its children.
    for (auto folder = bundle.folders.rbegin(); folder != bundle.folders.rend(); ++folder)
        if (::fchmodat(root.get(), folder->name.c_str(), folder->permissions, 0) != 0)
            return cannotUnpack(folder->name);
    if (::fchmod(root.get(), bundle.permissions) != 0)
        return cannotUnpack(bundle.folderName);
    step("permissions set");
    return Success{};
}

} // namespace dubrix
