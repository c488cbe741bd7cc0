#include "files/Descriptor.h"

#include <cerrno>
#include <sys/stat.h>

namespace dubrix {

bool writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

bool writeAllAt(int file, std::string_view bytes, std::uint64_t offset) {
    while (!bytes.empty()) {
        const ssize_t written =
            ::pwrite(file, bytes.data(), bytes.size(), static_cast<off_t>(offset));
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
        offset += static_cast<std::uint64_t>(written);
    }
    return true;
}

bool readExactly(int file, std::uint64_t offset, char* bytes, std::size_t size) {
    while (size > 0) {
        const ssize_t got = ::pread(file, bytes, size, static_cast<off_t>(offset));
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return false;
        bytes += got;
        offset += static_cast<std::uint64_t>(got);
        size -= static_cast<std::size_t>(got);
    }
    return true;
}

bool isSameFile(int one, int other) {
    struct stat first{};
    struct stat second{};
    return ::fstat(one, &first) == 0 && ::fstat(other, &second) == 0 &&
           first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

} // namespace dubrix
