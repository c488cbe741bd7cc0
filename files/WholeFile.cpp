#include "files/WholeFile.h"

#include "files/Descriptor.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

namespace dubrix {

namespace {

mode_t permissionsFor(const std::string& path) {
    struct stat status{};
    if (::lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode))
        return status.st_mode & 07777;
    return 0644;
}

} // namespace

std::optional<std::string> readWholeFile(const std::filesystem::path& path, std::uintmax_t limit) {
    // Not blocking: opening a named pipe must not wait for a writer.
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status{};
    if (!file.isOpen() || ::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode))
        return std::nullopt;
    if (static_cast<std::uintmax_t>(status.st_size) > limit)
        return std::nullopt;
    std::string bytes(static_cast<std::size_t>(status.st_size), '\0');
    std::size_t filled = 0;
    while (filled < bytes.size()) {
        const ssize_t got = ::read(file.get(), bytes.data() + filled, bytes.size() - filled);
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            return std::nullopt;
        if (got == 0)
            break;
        filled += static_cast<std::size_t>(got);
    }
    bytes.resize(filled);
    return bytes;
}

bool writeInto(const std::string& path, std::string_view bytes) {
    const Descriptor file(::open(path.c_str(), O_WRONLY | O_CLOEXEC));
    return file.isOpen() && writeAll(file.get(), bytes);
}

bool replaceWholeFile(const std::filesystem::path& path, std::string_view bytes,
                      Durability durability) {
    if (!path.has_filename())
        return false;
    std::optional<ReplacementFile> file = ReplacementFile::make(path, 0600);
    return file && writeAll(file->descriptor(), bytes) &&
           ::fchmod(file->descriptor(), permissionsFor(path.string())) == 0 &&
           file->putInPlace(durability);
}

} // namespace dubrix
