#include "device/confine/GivenFile.h"

#include <deque>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>

namespace dubrix {

namespace {

constexpr int manyLinks = 16;

bool sameFile(const struct stat& one, const struct stat& other) {
    return one.st_dev == other.st_dev && one.st_ino == other.st_ino;
}

std::deque<std::string> partsOf(std::string_view path) {
    std::deque<std::string> parts;
    while (!path.empty()) {
        const std::size_t end = std::min(path.find('/'), path.size());
        if (end > 0 && path.substr(0, end) != ".")
            parts.emplace_back(path.substr(0, end));
        path.remove_prefix(std::min(end + 1, path.size()));
    }
    return parts;
}

/// Whether `file`, opened by its path alone, is what may be given. A file is opened once more to
/// learn whether it can be read, after it is known that opening has no effects.
bool isOfKind(int file, Given kind) {
    struct stat status{};
    if (::fstat(file, &status) != 0)
        return false;
    if (kind == Given::Folder)
        return S_ISDIR(status.st_mode);
    if (!S_ISREG(status.st_mode))
        return false;
    const std::string again = "/proc/self/fd/" + std::to_string(file);
    return Descriptor(::open(again.c_str(), O_RDONLY | O_CLOEXEC)).isOpen();
}

/// One walk down from "/".
class Walk {
public:
    explicit Walk(const std::string& device) {
        deviceKnown_ = ::stat(device.c_str(), &device_) == 0;
        startAtRoot();
    }

    /// Opens what lies at the end of the path.
    Descriptor open(const std::string& path) {
        parts_ = partsOf(path);
        while (!parts_.empty()) {
            const std::string name = parts_.front();
            parts_.pop_front();
            if (name == ".." || !step(name))
                return Descriptor();
        }
        return std::move(here_);
    }

    bool onDevice() const { return onDevice_; }

private:
    void startAtRoot() {
        here_ = Descriptor(::open("/", O_PATH | O_DIRECTORY | O_CLOEXEC));
        atRoot_ = true;
        onDevice_ = false;
        arrive();
    }

    bool arrive() {
        struct stat status{};
        if (!here_.isOpen() || ::fstat(here_.get(), &status) != 0)
            return false;
        onDevice_ = onDevice_ || (deviceKnown_ && sameFile(status, device_));
        return true;
    }

    bool step(const std::string& name) {
        Descriptor next(::openat(here_.get(), name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
        struct stat found{};
        if (!next.isOpen() || ::fstat(next.get(), &found) != 0)
            return false;
        if (S_ISLNK(found.st_mode))
            return atRoot_ && !parts_.empty() && follow(next.get());
        here_ = std::move(next);
        atRoot_ = false;
        return arrive();
    }

    bool follow(int link) {
        char text[4096];
        const ssize_t size = ::readlinkat(link, "", text, sizeof text);
        if (size <= 0 || static_cast<std::size_t>(size) == sizeof text || ++links_ > manyLinks)
            return false;
        const std::string_view target(text, static_cast<std::size_t>(size));
        if (target.front() == '/')
            startAtRoot();
        const std::deque<std::string> ahead = partsOf(target);
        parts_.insert(parts_.begin(), ahead.begin(), ahead.end());
        return true;
    }

    struct stat device_{};
    bool deviceKnown_ = false;
    Descriptor here_;
    bool atRoot_ = true;
    std::deque<std::string> parts_;
    int links_ = 0;
    bool onDevice_ = false;
};

} // namespace

Descriptor openNamed(const std::string& path, Given kind) {
    Descriptor file(::open(path.c_str(), O_PATH | O_CLOEXEC));
    return file.isOpen() && isOfKind(file.get(), kind) ? std::move(file) : Descriptor();
}

Descriptor openAskedFor(const std::string& path, Given kind, const std::string& device) {
    if (!path.starts_with('/'))
        return Descriptor();
    const std::deque<std::string> parts = partsOf(path);
    if (kind == Given::Folder && (parts.empty() || !parts.back().ends_with(".app")))
        return Descriptor();
    Walk walk(device);
    Descriptor file = walk.open(path);
    struct stat status{};
    if (!file.isOpen() || !isOfKind(file.get(), kind) || ::fstat(file.get(), &status) != 0)
        return Descriptor();
    // The kernel's own files about processes have no size.
    const bool fits = kind == Given::Folder ? !walk.onDevice() : status.st_size > 0;
    return fits ? std::move(file) : Descriptor();
}

} // namespace dubrix
