#include "platform/posix/PosixDeviceClaim.h"

#include "device/registry/Registry.h"
#include "files/FileTree.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>

namespace dubrix {

PosixDeviceClaim::PosixDeviceClaim(const std::filesystem::path& root)
    : folder_(Registry(root).hostPath(Registry::applicationPath)) {}

bool PosixDeviceClaim::claim() {
    // Closed in whatever is started from here: a process that a command leaves behind must not keep
    // the device.
    Descriptor folder = openFolderAt(AT_FDCWD, folder_.native());
    if (folder.isOpen() && ::flock(folder.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
        return false;
    lock_ = std::move(folder);
    return true;
}

void PosixDeviceClaim::release() {
    lock_.close();
}

} // namespace dubrix
