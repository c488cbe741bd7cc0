#pragma once

#include "platform/MonochromeFilter.h"

namespace dubrix {

/// Remaps PNG (also the phone's crushed form) and JPEG files; see decodeImage for what is read and
/// MonochromeRemap for the formula. Holds no state.
class PosixMonochromeFilter final : public MonochromeFilter {
public:
    std::optional<std::string> monochromePng(std::string_view image, float red, float green,
                                             float blue) const override;
};

} // namespace dubrix
