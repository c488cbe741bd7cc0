#include "device/judge/PictureFile.h"

#include <cerrno>
#include <cstring>

namespace dubrix {

std::string PictureFile::begin(const std::string& name) {
    std::error_code ignored;
    if (std::filesystem::is_directory(name, ignored))
        return std::strerror(EISDIR);
    problem_.clear();
    file_.reset();
    if (std::optional<ReplacementFile> file = ReplacementFile::make(name, 0666))
        file_.emplace(std::move(*file));
    return file_ ? std::string() : std::strerror(errno);
}

void PictureFile::write(std::string_view bytes) {
    if (problem_.empty() && !writeAll(file_->descriptor(), bytes))
        problem_ = std::strerror(errno);
}

std::string PictureFile::end() {
    if (problem_.empty() && !file_->putInPlace(Durability::Process))
        problem_ = std::strerror(errno);
    file_.reset();
    return problem_;
}

} // namespace dubrix
