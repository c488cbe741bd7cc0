#include "platform/linux/FolderSizes.h"

#include "device/Descriptor.h"

#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <sys/stat.h>

namespace dubrix {

namespace {

/// Entries are looked at by their names in the open folder: the way there is not walked again for
/// each of them.
void addSizes(Descriptor folder, std::vector<std::int64_t>& sizes) {
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(::fdopendir(folder.get()), ::closedir);
    if (!stream)
        return;
    const int number = folder.release();
    while (const dirent* entry = ::readdir(stream.get())) {
        const std::string_view name = entry->d_name;
        struct stat status {};
        if (name == "." || name == ".." ||
            ::fstatat(number, entry->d_name, &status, AT_SYMLINK_NOFOLLOW) != 0)
            continue;
        sizes.push_back(status.st_size);
        if (S_ISDIR(status.st_mode))
            addSizes(Descriptor(::openat(number, entry->d_name,
                                         O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC)),
                     sizes);
    }
}

} // namespace

std::vector<std::int64_t> sizesBelow(const std::string& folder) {
    std::vector<std::int64_t> sizes;
    addSizes(Descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)), sizes);
    return sizes;
}

} // namespace dubrix
