#pragma once

#include "device/judge/Pictures.h"
#include "files/ReplacementFile.h"

#include <optional>

namespace dubrix {

/// Writes pictures to their files, each whole or not at all. What has not come to its end leaves
/// nothing behind.
class PictureFile final : public PictureWriter {
public:
    std::string begin(const std::string& name) override;
    void write(std::string_view bytes) override;
    std::string end() override;

private:
    std::optional<ReplacementFile> file_;
    std::string problem_;
};

} // namespace dubrix
