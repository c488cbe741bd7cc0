#include "device/BundleUnpacker.h"

#include "device/FileTree.h"
#include "device/FileUnpacking.h"
#include "formats/Descriptor.h"

#include <fcntl.h>
#include <sys/stat.h>

namespace dubrix {

namespace {

Failure cannotUnpack(const std::string& name) {
    return systemFailure("cannot be unpacked at " + name);
}

} // namespace

Outcome unpackBundle(const ArchivedBundle& bundle, const LinkTargets& links, int archive,
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
    if (Outcome done = FileUnpacking(bundle.files, archive, root.get(), step, progress).run();
        !done)
        return done;
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
