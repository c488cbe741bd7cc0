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

Outcome unpackFile(const ZipEntry& entry, ZipEntryReader& reader, int folder) {
    Descriptor file(::openat(folder, entry.name.c_str(),
                             O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!file.isOpen())
        return cannotUnpack(entry.name);
    Outcome done = reader.read(entry, [&](std::string_view bytes) -> Outcome {
        if (!writeAll(file.get(), bytes))
            return cannotUnpack(entry.name);
        return Success{};
    });
    // After the writing and past the process's mask, which would take bits away.
    if (done && (::fchmod(file.get(), entry.permissions) != 0 || !file.close()))
        return cannotUnpack(entry.name);
    return done;
}

} // namespace

Outcome unpackBundle(const ArchivedBundle& bundle, const LinkTargets& links, ZipEntryReader& reader,
                     int staging, const StepHook& step) {
    if (::mkdirat(staging, bundle.folderName.c_str(), 0700) != 0)
        return cannotUnpack(bundle.folderName);
    const Descriptor root = openFolderAt(staging, bundle.folderName);
    if (!root.isOpen())
        return cannotUnpack(bundle.folderName);
    for (const ZipEntry& folder : bundle.folders)
        if (::mkdirat(root.get(), folder.name.c_str(), 0700) != 0)
            return cannotUnpack(folder.name);
    step("folders made");
    for (const ZipEntry& file : bundle.files) {
        if (Outcome done = unpackFile(file, reader, root.get()); !done)
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
