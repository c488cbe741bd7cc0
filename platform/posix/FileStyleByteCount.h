#pragma once

#include "platform/ByteCountFormatter.h"

namespace dubrix {

/// File counting style: bytes and kilobytes without decimals, megabytes with at most one, larger
/// units with at most two, trailing zeros left out, halves rounded away from zero. A number that
/// would round to 1,000 of a unit is given as 1 of the next.
class FileStyleByteCount final : public ByteCountFormatter {
public:
    std::string stringFromByteCount(std::int64_t bytes) const override;
};

} // namespace dubrix
