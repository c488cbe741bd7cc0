#include "formats/ReplacementFile.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <utility>

namespace dubrix {

namespace {

/// As many writers for one place can be at work at the same time.
constexpr unsigned mostNames = 8;
/// Bytes of the target's name that its temporary names repeat, within the 255 that a name may have.
constexpr std::size_t mostOfTarget = 240;

/// Where an open file without a name can be linked from.
std::string pathOf(int file) {
    return "/proc/self/fd/" + std::to_string(file);
}

bool isStillAt(int file, const std::string& path) {
    struct stat open {};
    struct stat named {};
    return ::fstat(file, &open) == 0 && ::lstat(path.c_str(), &named) == 0 &&
           open.st_dev == named.st_dev && open.st_ino == named.st_ino;
}

/// Removes the temporary file at `path` when its writer is dead; whether the name is free then.
bool sweep(const std::string& path) {
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW));
    if (!file.isOpen())
        return errno == ENOENT;
    struct stat status {};
    if (::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode) ||
        ::flock(file.get(), LOCK_EX | LOCK_NB) != 0)
        return false;
    // The name leads to another file when its writer came to an end in between. It cannot from
    // here on: only who holds the lock takes a file's name away.
    return !isStillAt(file.get(), path) || ::unlink(path.c_str()) == 0;
}

/// What is known of failed writes when the last byte has been handed over, as by closing.
bool isWritten(int file) {
    const int copy = ::fcntl(file, F_DUPFD_CLOEXEC, 0);
    return copy >= 0 && ::close(copy) == 0;
}

} // namespace

ReplacementFile::ReplacementFile(std::filesystem::path target, Descriptor file)
    : target_(std::move(target)),
      file_(std::move(file)) {}

ReplacementFile::ReplacementFile(ReplacementFile&& other) noexcept
    : target_(std::move(other.target_)),
      file_(std::move(other.file_)),
      name_(std::exchange(other.name_, {})) {}

std::optional<ReplacementFile> ReplacementFile::make(const std::filesystem::path& target,
                                                     mode_t permissions) {
    const std::filesystem::path folder = target.has_parent_path() ? target.parent_path() : ".";
    ReplacementFile made(
        target, Descriptor(::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, permissions)));
    // Before it gets a name: who finds the name finds the lock.
    const bool hasNoName = made.file_.isOpen() &&
                           ::flock(made.file_.get(), LOCK_EX | LOCK_NB) == 0 &&
                           ::access(pathOf(made.file_.get()).c_str(), F_OK) == 0;
    if (hasNoName || made.makeNamed(permissions))
        return made;
    return std::nullopt;
}

bool ReplacementFile::makeNamed(mode_t permissions) {
    const bool made = takeFreeName([&](const std::string& name) {
        file_ =
            Descriptor(::open(name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, permissions));
        return file_.isOpen();
    });
    if (!made)
        return false;
    // Before it is locked another writer can take it for a dead one's and sweep it.
    const bool isOurs = ::flock(file_.get(), LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
    return (isOurs && isStillAt(file_.get(), name_)) || makeNamed(permissions);
}

bool ReplacementFile::takeName() {
    const std::string source = pathOf(file_.get());
    return !name_.empty() || takeFreeName([&](const std::string& name) {
        return ::linkat(AT_FDCWD, source.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0;
    });
}

/// `take` fails with EEXIST for a name that is there.
bool ReplacementFile::takeFreeName(const std::function<bool(const std::string&)>& take) {
    const std::string beside = target_.filename().native().substr(0, mostOfTarget);
    for (unsigned number = 0; number < mostNames; ++number) {
        name_ = target_.parent_path() / ("." + beside + ".dubrix-" + std::to_string(number));
        if (take(name_))
            return true;
        if (errno != EEXIST)
            break;
        if (sweep(name_) && take(name_))
            return true;
        errno = EEXIST;
    }
    name_.clear();
    return false;
}

bool ReplacementFile::putInPlace(Durability durability) {
    const bool isSafe =
        durability == Durability::PowerCut ? ::fsync(file_.get()) == 0 : isWritten(file_.get());
    if (!isSafe || !takeName() || ::rename(name_.c_str(), target_.c_str()) != 0)
        return false;
    name_.clear();
    return true;
}

void ReplacementFile::giveUp() {
    if (!name_.empty())
        ::unlink(std::exchange(name_, {}).c_str());
}

} // namespace dubrix
