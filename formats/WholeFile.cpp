#include "formats/WholeFile.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace dubrix {

namespace {

/// Owns one file descriptor.
class Descriptor {
public:
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() { close(); }
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&&) = delete;

    int get() const { return number_; }
    bool isOpen() const { return number_ >= 0; }
    bool close() {
        const int number = std::exchange(number_, -1);
        return number < 0 || ::close(number) == 0;
    }

private:
    int number_;
};

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

constexpr std::string_view temporaryPattern = ".dubrix-XXXXXX";

bool isTemporaryName(std::string_view name) {
    constexpr std::string_view prefix = ".dubrix-";
    return name.size() == temporaryPattern.size() && name.starts_with(prefix);
}

/// Opens a new file in `folder`, locked until the last descriptor of it is closed: what bears such
/// a name and is not locked was left by a writer that was killed.
Descriptor openTemporary(const std::filesystem::path& folder, std::string& path) {
    while (true) {
        path = (folder / temporaryPattern).string();
        Descriptor file(::mkostemp(path.data(), O_CLOEXEC));
        struct stat status {};
        const bool sweptMeanwhile = file.isOpen() && ::flock(file.get(), LOCK_EX) == 0 &&
                                    ::fstat(file.get(), &status) == 0 && status.st_nlink == 0;
        if (!sweptMeanwhile)
            return file;
    }
}

void sweepTemporaryFiles(const std::filesystem::path& folder) {
    std::error_code error;
    std::filesystem::directory_iterator entry(folder, error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        const std::filesystem::path& path = entry->path();
        if (!isTemporaryName(path.filename().native()))
            continue;
        const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW));
        struct stat status {};
        if (file.isOpen() && ::fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode) &&
            ::flock(file.get(), LOCK_EX | LOCK_NB) == 0)
            ::unlink(path.c_str());
    }
}

mode_t permissionsFor(const std::string& path) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode))
        return status.st_mode & 07777;
    return 0644;
}

} // namespace

std::optional<std::string> readWholeFile(const std::filesystem::path& path, std::uintmax_t limit) {
    // Not blocking: opening a named pipe must not wait for a writer.
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat status {};
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

bool replaceWholeFile(const std::filesystem::path& path, std::string_view bytes) {
    if (!path.has_filename())
        return false;
    sweepTemporaryFiles(path.parent_path());
    std::string temporary;
    Descriptor file = openTemporary(path.parent_path(), temporary);
    if (!file.isOpen())
        return false;
    // Closing tells of late write errors; the lock must outlive it until the name is gone.
    const Descriptor lock(::fcntl(file.get(), F_DUPFD_CLOEXEC, 0));
    const bool whole = writeAll(file.get(), bytes) &&
                       ::fchmod(file.get(), permissionsFor(path.string())) == 0 && file.close() &&
                       ::rename(temporary.c_str(), path.c_str()) == 0;
    if (!whole)
        ::unlink(temporary.c_str());
    return whole;
}

} // namespace dubrix
