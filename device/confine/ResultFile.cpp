#include "device/confine/ResultFile.h"

#include "device/FileTree.h"

#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>

namespace dubrix {

namespace {

constexpr int manyOfOneName = 10000;

/// Keeps signals waiting for as long as it lives.
class WithoutSignals {
public:
    WithoutSignals() {
        sigset_t all;
        ::sigfillset(&all);
        ::sigprocmask(SIG_BLOCK, &all, &before_);
    }
    ~WithoutSignals() { ::sigprocmask(SIG_SETMASK, &before_, nullptr); }
    WithoutSignals(const WithoutSignals&) = delete;
    WithoutSignals& operator=(const WithoutSignals&) = delete;

private:
    sigset_t before_{};
};

std::string hiddenName() {
    return "." + randomUuid() + ".part";
}

} // namespace

ResultFile::ResultFile(std::string folder, std::string name, Existing existing)
    : folder_(std::move(folder)),
      name_(std::move(name)),
      existing_(existing),
      place_(::open(folder_.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC)) {}

ResultFile::~ResultFile() {
    if (file_.isOpen() && !temporary_.empty())
        ::unlinkat(place_.get(), temporary_.c_str(), 0);
}

bool ResultFile::open() {
    file_ = Descriptor(
        ::openat(place_.get(), ".", O_TMPFILE | O_WRONLY | O_CLOEXEC, static_cast<mode_t>(0666)));
    if (file_.isOpen() || (errno != EOPNOTSUPP && errno != EISDIR && errno != EINVAL))
        return file_.isOpen();
    temporary_ = hiddenName();
    file_ = Descriptor(::openat(place_.get(), temporary_.c_str(),
                                O_CREAT | O_EXCL | O_WRONLY | O_NOFOLLOW | O_CLOEXEC,
                                static_cast<mode_t>(0666)));
    return file_.isOpen();
}

Result<ResultFile> ResultFile::begin(const std::string& path, Existing existing) {
    const std::filesystem::path whole = path;
    const std::string folder = whole.has_parent_path() ? whole.parent_path().native() : ".";
    ResultFile result(folder, whole.filename().native(), existing);
    struct stat status {};
    if (existing == Existing::Replaced &&
        ::fstatat(result.place_.get(), result.name_.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 &&
        !S_ISREG(status.st_mode))
        return Failure{path + " is there already and is not a file"};
    if (result.place_.isOpen() && result.open())
        return result;
    return systemFailure(path + " cannot be written");
}

bool ResultFile::linkAs(const std::string& name) const {
    if (!temporary_.empty())
        return ::linkat(place_.get(), temporary_.c_str(), place_.get(), name.c_str(), 0) == 0;
    const std::string open = "/proc/self/fd/" + std::to_string(file_.get());
    return ::linkat(AT_FDCWD, open.c_str(), place_.get(), name.c_str(), AT_SYMLINK_FOLLOW) == 0;
}

/// A name can only be taken over from another one: the file has a hidden name for two calls.
Outcome ResultFile::replace() {
    if (temporary_.empty()) {
        if (linkAs(name_))
            return Success{};
        const std::string hidden = hiddenName();
        if (errno != EEXIST || !linkAs(hidden))
            return systemFailure(name_ + " cannot be written");
        temporary_ = hidden;
    }
    if (::renameat(place_.get(), temporary_.c_str(), place_.get(), name_.c_str()) != 0)
        return systemFailure(name_ + " cannot be written");
    temporary_.clear();
    return Success{};
}

Result<std::string> ResultFile::placeBesideOthers() {
    const std::filesystem::path whole = name_;
    std::string name = name_;
    for (int number = 2; number < manyOfOneName; ++number) {
        // Where files cannot have two names, one that must not exist is renamed to.
        const bool placed =
            linkAs(name) || (errno == EPERM && !temporary_.empty() &&
                             ::renameat2(place_.get(), temporary_.c_str(), place_.get(),
                                         name.c_str(), RENAME_NOREPLACE) == 0);
        if (placed)
            return name;
        if (errno != EEXIST)
            break;
        name = whole.stem().native() + " (" + std::to_string(number) + ")" +
               whole.extension().native();
    }
    return systemFailure(name_ + " cannot be written");
}

Result<std::string> ResultFile::finish() {
    const WithoutSignals quiet;
    if (existing_ == Existing::Replaced) {
        if (Outcome done = replace(); !done)
            return done.failure();
        return (std::filesystem::path(folder_) / name_).native();
    }
    Result<std::string> name = placeBesideOthers();
    if (!name)
        return name;
    return (std::filesystem::path(folder_) / *name).native();
}

} // namespace dubrix
