#pragma once

#include <chrono>
#include <fcntl.h>
#include <sys/stat.h>

namespace dubrix {

/// What the file system says of a file when it is looked at. A file counts as unchanged while its
/// place, size and times are. Empty for a file that is not there, which equals nothing.
struct FileStamp {
    using Time = std::chrono::nanoseconds;

    dev_t device = 0;
    ino_t node = 0;
    off_t size = 0;
    /// Since the epoch.
    Time modified{0};
    Time changed{0};

    /// Links are followed; a relative path is one below the open folder `folder`.
    static FileStamp of(const char* path, int folder = AT_FDCWD) {
        struct stat status {};
        return ::fstatat(folder, path, &status, 0) == 0 ? of(status) : FileStamp{};
    }
    /// Of an open file; empty also for one that has been removed.
    static FileStamp of(int file) {
        struct stat status {};
        return ::fstat(file, &status) == 0 && status.st_nlink != 0 ? of(status) : FileStamp{};
    }

    bool isSameFile(const FileStamp& other) const {
        return node != 0 && node == other.node && device == other.device;
    }

    bool operator==(const FileStamp& other) const {
        return isSameFile(other) && size == other.size && modified == other.modified &&
               changed == other.changed;
    }

    /// The stamp to keep with what was read at `now`: an empty one for a file changed less than
    /// `settling` before, since another change could follow without leaving a trace, within one
    /// tick of the file system's clock.
    FileStamp keptAt(Time now, Time settling) const {
        return changed + settling <= now ? *this : FileStamp{};
    }

    static Time now() { return std::chrono::system_clock::now().time_since_epoch(); }

private:
    static FileStamp of(const struct stat& status) {
        return {status.st_dev, status.st_ino, status.st_size, timeOf(status.st_mtim),
                timeOf(status.st_ctim)};
    }
    static Time timeOf(const timespec& time) {
        return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
    }
};

} // namespace dubrix
