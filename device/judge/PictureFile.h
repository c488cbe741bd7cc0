#pragma once

#include "device/judge/Pictures.h"
#include "formats/Descriptor.h"

namespace dubrix {

/// Writes pictures to their files, each whole or not at all: beside its place, to which it is
/// renamed at its end. What has not come to its end leaves nothing behind.
class PictureFile final : public PictureWriter {
public:
    PictureFile() = default;
    PictureFile(const PictureFile&) = delete;
    PictureFile& operator=(const PictureFile&) = delete;
    ~PictureFile() override { drop(); }

    std::string begin(const std::string& name) override;
    void write(std::string_view bytes) override;
    std::string end() override;

private:
    void drop();

    std::string target_;
    std::string temporary_;
    Descriptor file_;
    std::string problem_;
};

} // namespace dubrix
