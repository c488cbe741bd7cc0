#pragma once

#include <cstdint>
#include <string>

namespace dubrix {

/// Texts for byte counts.
class ByteCountFormatter {
public:
    virtual ~ByteCountFormatter() = default;

    /// `bytes` in file counting style: decimal units, 1,000 bytes to the kilobyte, for example
    /// "Zero KB", "1 byte", "4 KB", "12.3 MB", "1.25 GB".
    virtual std::string stringFromByteCount(std::int64_t bytes) const = 0;
};

} // namespace dubrix
