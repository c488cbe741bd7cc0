#include "platform/posix/PosixFileManager.h"

#include "files/FileTree.h"
#include "files/WholeFile.h"

#include <algorithm>
#include <fcntl.h>

namespace dubrix {

namespace fs = std::filesystem;

namespace {

/// Where the staged bundle in which `path` lies ends ("/tmp/…/Payload/….app"); npos for a path
/// that is in none.
std::size_t endOfStagedBundle(const std::string& path) {
    constexpr std::string_view payload = "/Payload/";
    if (!path.starts_with("/tmp/"))
        return std::string::npos;
    const std::size_t start = path.find(payload);
    if (start == std::string::npos)
        return std::string::npos;
    const std::size_t end = path.find('/', start + payload.size());
    return end != std::string::npos && path.compare(end - 4, 4, ".app") == 0 ? end
                                                                             : std::string::npos;
}

bool isBelow(const fs::path& folder, const fs::path& path) {
    return std::mismatch(folder.begin(), folder.end(), path.begin(), path.end()).first ==
           folder.end();
}

/// Whether `path` names something below "/tmp" without empty, "." or ".." components.
bool namesSomethingBelowTmp(std::string_view path) {
    constexpr std::string_view tmp = "/tmp/";
    if (!path.starts_with(tmp))
        return false;
    path.remove_prefix(tmp.size());
    if (path.ends_with('/'))
        path.remove_suffix(1);
    return isPlainPath(path);
}

fs::path withoutTrailingSlash(const fs::path& path) {
    return path.has_filename() ? path : path.parent_path();
}

} // namespace

fs::path PosixFileManager::resolve(const std::string& path) const {
    return root_ / fs::path("/" + path).lexically_normal().relative_path();
}

bool PosixFileManager::staysInPlace(const std::string& path) const {
    if (path.empty() || path.find('\0') != std::string::npos)
        return false;
    const std::size_t end = endOfStagedBundle(path);
    if (end == std::string::npos)
        return true;
    std::error_code error;
    const fs::path bundle = fs::canonical(resolve(path.substr(0, end)), error);
    if (error)
        return true; // there is no bundle to leave
    const fs::path full = fs::weakly_canonical(resolve(path), error);
    return !error && isBelow(bundle, full);
}

bool PosixFileManager::fileExistsAtPath(const std::string& path) const {
    std::error_code error;
    return staysInPlace(path) && fs::exists(resolve(path), error);
}

bool PosixFileManager::createDirectoryAtPath(const std::string& path) {
    std::error_code error;
    const fs::path folder = withoutTrailingSlash(resolve(path));
    fs::create_directories(folder, error);
    return fs::is_directory(folder, error);
}

bool PosixFileManager::removeItemAtPath(const std::string& path) {
    if (!namesSomethingBelowTmp(path) || path.find('\0') != std::string::npos)
        return false;
    std::error_code error;
    const fs::path item = withoutTrailingSlash(resolve(path));
    const fs::path tmp = fs::canonical(resolve("/tmp"), error);
    const fs::path parent = fs::canonical(item.parent_path(), error);
    if (error || !isBelow(tmp, parent)) // the way there led through a link to somewhere else
        return false;
    const Descriptor folder = openFolderAt(AT_FDCWD, parent.native());
    return folder.isOpen() && removeTreeAt(folder.get(), item.filename().native());
}

std::vector<std::int64_t> PosixFileManager::sizesOfItemsBelowPath(const std::string& path) const {
    return sizesBelow(resolve(path));
}

std::optional<std::string> PosixFileManager::contentsAtPath(const std::string& path) const {
    return staysInPlace(path) ? readWholeFile(resolve(path)) : std::nullopt;
}

bool PosixFileManager::writeToFile(const std::string& path, std::string_view bytes) {
    // A duplicate that was staged when power was cut is made again.
    const Durability durability =
        path.starts_with("/tmp/") ? Durability::Process : Durability::PowerCut;
    return staysInPlace(path) && replaceWholeFile(resolve(path), bytes, durability);
}

} // namespace dubrix
