#include "files/FileTree.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <fts.h>
#include <memory>
#include <random>
#include <sys/stat.h>

namespace dubrix {

namespace {

constexpr std::size_t uuidLength = 36;

bool isDashPlace(std::size_t index) {
    return index == 8 || index == 13 || index == 18 || index == 23;
}

} // namespace

Descriptor openFolderAt(int parent, const std::string& name) {
    return Descriptor(
        ::openat(parent, name.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
}

std::optional<std::vector<std::string>> unsortedNamesIn(Descriptor folder) {
    if (!folder.isOpen())
        return std::nullopt;
    const std::unique_ptr<DIR, int (*)(DIR*)> stream(::fdopendir(folder.get()), ::closedir);
    if (!stream)
        return std::nullopt;
    folder.release();
    std::vector<std::string> names;
    errno = 0;
    while (const dirent* entry = ::readdir(stream.get())) {
        const std::string_view name = entry->d_name;
        if (name != "." && name != "..")
            names.emplace_back(name);
        errno = 0;
    }
    if (errno != 0)
        return std::nullopt;
    return names;
}

std::optional<std::vector<std::string>> namesIn(int folder) {
    // A descriptor of its own: reading moves the position that duplicates share.
    auto names = unsortedNamesIn(openFolderAt(folder, "."));
    if (names)
        std::sort(names->begin(), names->end());
    return names;
}

bool removeTreeAt(int parent, const std::string& name) {
    // Most are files: whether this is one is asked of the removal itself.
    if (::unlinkat(parent, name.c_str(), 0) == 0 || errno == ENOENT)
        return true;
    struct stat status{};
    if (::fstatat(parent, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0 ||
        !S_ISDIR(status.st_mode))
        return errno == ENOENT;
    if ((status.st_mode & S_IRWXU) != S_IRWXU)
        ::fchmodat(parent, name.c_str(), S_IRWXU, 0);
    {
        const Descriptor folder = openFolderAt(parent, name);
        if (folder.isOpen())
            for (const std::string& below :
                 namesIn(folder.get()).value_or(std::vector<std::string>{}))
                removeTreeAt(folder.get(), below);
    }
    return ::unlinkat(parent, name.c_str(), AT_REMOVEDIR) == 0;
}

bool isPlainPath(std::string_view path) {
    while (true) {
        const std::string_view component = path.substr(0, path.find('/'));
        if (component.empty() || component == "." || component == "..")
            return false;
        if (component.size() == path.size())
            return true;
        path.remove_prefix(component.size() + 1);
    }
}

std::vector<std::int64_t> sizesBelow(const std::string& folder) {
    std::string root = folder;
    char* const roots[] = {root.data(), nullptr};
    std::vector<std::int64_t> sizes;
    // Without changing the folder of the process, which other threads share.
    const std::unique_ptr<FTS, int (*)(FTS*)> walk(
        ::fts_open(roots, FTS_PHYSICAL | FTS_COMFOLLOW | FTS_NOCHDIR, nullptr), ::fts_close);
    while (const FTSENT* const entry = walk ? ::fts_read(walk.get()) : nullptr) {
        // A folder comes again when it has been walked, or cannot be.
        const bool isFirst = entry->fts_info != FTS_DP && entry->fts_info != FTS_DNR;
        const bool isRead = entry->fts_info != FTS_NS && entry->fts_info != FTS_ERR;
        if (entry->fts_level > FTS_ROOTLEVEL && isFirst && isRead)
            sizes.push_back(entry->fts_statp->st_size);
    }
    return sizes;
}

std::string randomUuid() {
    static constexpr std::string_view digits = "0123456789ABCDEF";
    std::random_device random;
    std::string uuid;
    for (std::size_t index = 0; index < uuidLength; ++index)
        uuid += isDashPlace(index) ? '-' : digits[random() % digits.size()];
    uuid[14] = '4';                                   // the version: random
    uuid[19] = digits[8 + digits.find(uuid[19]) % 4]; // the variant
    return uuid;
}

bool isUuid(std::string_view name) {
    if (name.size() != uuidLength)
        return false;
    for (std::size_t index = 0; index < name.size(); ++index) {
        const bool fits = isDashPlace(index)
                              ? name[index] == '-'
                              : std::isxdigit(static_cast<unsigned char>(name[index])) != 0;
        if (!fits)
            return false;
    }
    return true;
}

} // namespace dubrix
