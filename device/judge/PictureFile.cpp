#include "device/judge/PictureFile.h"

#include "device/FileTree.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/stat.h>

namespace dubrix {

std::string PictureFile::begin(const std::string& name) {
    std::error_code ignored;
    if (std::filesystem::is_directory(name, ignored))
        return std::strerror(EISDIR);
    target_ = name;
    problem_.clear();
    // Locked as long as it is written, as whatever is written aside is.
    temporary_ = std::filesystem::path(name).parent_path() / ".dubrix-XXXXXX";
    file_ = Descriptor(::mkostemp(temporary_.data(), O_CLOEXEC));
    if (!file_.isOpen()) {
        temporary_.clear();
        return std::strerror(errno);
    }
    ::flock(file_.get(), LOCK_EX);
    return {};
}

void PictureFile::write(std::string_view bytes) {
    if (problem_.empty() && !writeAll(file_.get(), bytes))
        problem_ = std::strerror(errno);
}

std::string PictureFile::end() {
    const mode_t mask = ::umask(0);
    ::umask(mask);
    if (problem_.empty() && (::fchmod(file_.get(), 0666 & ~mask) != 0 ||
                             ::rename(temporary_.c_str(), target_.c_str()) != 0))
        problem_ = std::strerror(errno);
    else if (problem_.empty())
        temporary_.clear();
    drop();
    return problem_;
}

void PictureFile::drop() {
    file_.close();
    if (!temporary_.empty())
        ::unlink(temporary_.c_str());
    temporary_.clear();
}

} // namespace dubrix
