#include "platform/posix/FileStyleByteCount.h"

#include <array>

namespace dubrix {

namespace {

struct Unit {
    const char* name;
    std::uint64_t bytes;
    unsigned decimals; // as a power of ten
};

constexpr std::array units = {
    Unit{"KB", 1'000, 1},
    Unit{"MB", 1'000'000, 10},
    Unit{"GB", 1'000'000'000, 100},
    Unit{"TB", 1'000'000'000'000, 100},
    Unit{"PB", 1'000'000'000'000'000, 100},
    Unit{"EB", 1'000'000'000'000'000'000, 100},
};

std::string decimalText(std::uint64_t scaled, unsigned decimals) {
    std::string text = std::to_string(scaled / decimals);
    if (scaled % decimals != 0) {
        const std::string digits = std::to_string(scaled % decimals + decimals).substr(1);
        text += "." + digits.substr(0, digits.find_last_not_of('0') + 1);
    }
    return text;
}

} // namespace

std::string FileStyleByteCount::stringFromByteCount(std::int64_t bytes) const {
    if (bytes == 0)
        return "Zero KB";
    const std::string sign = bytes < 0 ? "-" : "";
    const std::uint64_t size =
        bytes < 0 ? 0 - static_cast<std::uint64_t>(bytes) : static_cast<std::uint64_t>(bytes);
    if (size < 1'000)
        return sign + std::to_string(size) + (size == 1 ? " byte" : " bytes");
    std::string text;
    for (const Unit& unit : units) {
        const std::uint64_t step = unit.bytes / unit.decimals;
        const std::uint64_t scaled = size / step + (size % step >= step - step / 2 ? 1 : 0);
        text = sign + decimalText(scaled, unit.decimals) + " " + unit.name;
        if (scaled < 1'000 * std::uint64_t{unit.decimals})
            break;
    }
    return text;
}

} // namespace dubrix
