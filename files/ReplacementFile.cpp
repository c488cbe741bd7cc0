#include "files/ReplacementFile.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>

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

/// What is known of failed writes when the last byte has been handed over, as by closing.
bool isWritten(int file) {
    const int copy = ::fcntl(file, F_DUPFD_CLOEXEC, 0);
    return copy >= 0 && ::close(copy) == 0;
}

} // namespace

ReplacementFile::ReplacementFile(Descriptor folder, std::string target)
    : folder_(std::move(folder)),
      target_(std::move(target)) {}

ReplacementFile::ReplacementFile(ReplacementFile&& other) noexcept
    : folder_(std::move(other.folder_)),
      target_(std::move(other.target_)),
      file_(std::move(other.file_)),
      name_(std::exchange(other.name_, {})) {}

std::optional<ReplacementFile> ReplacementFile::make(const std::filesystem::path& target,
                                                     mode_t permissions) {
    const std::filesystem::path folder = target.has_parent_path() ? target.parent_path() : ".";
    ReplacementFile made(Descriptor(::open(folder.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)),
                         target.filename().native());
    if (made.folder_.isOpen() && (made.open(permissions) || made.openNamed(permissions)))
        return made;
    return std::nullopt;
}

/// Locked before it gets a name: who finds the name finds the lock.
bool ReplacementFile::open(mode_t permissions) {
    file_ = Descriptor(::openat(folder_.get(), ".", O_TMPFILE | O_WRONLY | O_CLOEXEC, permissions));
    return file_.isOpen() && ::flock(file_.get(), LOCK_EX | LOCK_NB) == 0 &&
           ::access(pathOf(file_.get()).c_str(), F_OK) == 0;
}

bool ReplacementFile::openNamed(mode_t permissions) {
    const bool made = takeFreeName([&](const std::string& name) {
        file_ = Descriptor(::openat(folder_.get(), name.c_str(),
                                    O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, permissions));
        return file_.isOpen();
    });
    if (!made)
        return false;
    // Before it is locked another writer can take it for a dead one's and sweep it.
    const bool isOurs = ::flock(file_.get(), LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
    return (isOurs && isStillAt(name_)) || openNamed(permissions);
}

bool ReplacementFile::linkAs(const std::string& name) const {
    if (!name_.empty())
        return ::linkat(folder_.get(), name_.c_str(), folder_.get(), name.c_str(), 0) == 0;
    return ::linkat(AT_FDCWD, pathOf(file_.get()).c_str(), folder_.get(), name.c_str(),
                    AT_SYMLINK_FOLLOW) == 0;
}

bool ReplacementFile::isStillAt(const std::string& name) const {
    const Descriptor named(::openat(folder_.get(), name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    return isSameFile(file_.get(), named.get());
}

/// Removes the temporary file `name` when its writer is dead; whether the name is free then.
bool ReplacementFile::sweep(const std::string& name) const {
    constexpr int mode = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW;
    const Descriptor file(::openat(folder_.get(), name.c_str(), mode));
    if (!file.isOpen())
        return errno == ENOENT;
    struct stat status{};
    if (::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode) ||
        ::flock(file.get(), LOCK_EX | LOCK_NB) != 0)
        return false;
    // The name leads to another file when its writer came to an end in between. It cannot from
    // here on: only who holds the lock takes a file's name away.
    const Descriptor named(::openat(folder_.get(), name.c_str(), mode));
    return !isSameFile(file.get(), named.get()) || ::unlinkat(folder_.get(), name.c_str(), 0) == 0;
}

/// `take` fails with EEXIST for a name that is there.
bool ReplacementFile::takeFreeName(const std::function<bool(const std::string&)>& take) {
    const std::string beside = "." + target_.substr(0, mostOfTarget) + ".dubrix-";
    for (unsigned number = 0; number < mostNames; ++number) {
        std::string name = beside + std::to_string(number);
        bool taken = take(name);
        if (!taken && errno != EEXIST)
            return false;
        if (taken || (sweep(name) && take(name))) {
            name_ = std::move(name);
            return true;
        }
        errno = EEXIST;
    }
    return false;
}

bool ReplacementFile::putInPlace(Durability durability) {
    const bool isSafe =
        durability == Durability::PowerCut ? ::fsync(file_.get()) == 0 : isWritten(file_.get());
    // A name can only be taken over from another one.
    const bool isNamed =
        isSafe &&
        (!name_.empty() || takeFreeName([this](const std::string& name) { return linkAs(name); }));
    if (!isNamed || ::renameat(folder_.get(), name_.c_str(), folder_.get(), target_.c_str()) != 0)
        return false;
    name_.clear();
    return true;
}

bool ReplacementFile::putBeside(const std::string& name) {
    if (!isWritten(file_.get()))
        return false;
    if (linkAs(name)) {
        giveUp();
        return true;
    }
    // Where files cannot have two names, one that must not exist is renamed to.
    if (errno != EPERM || name_.empty() ||
        ::renameat2(folder_.get(), name_.c_str(), folder_.get(), name.c_str(), RENAME_NOREPLACE) !=
            0)
        return false;
    name_.clear();
    return true;
}

void ReplacementFile::giveUp() {
    if (!name_.empty())
        ::unlinkat(folder_.get(), std::exchange(name_, {}).c_str(), 0);
}

} // namespace dubrix
