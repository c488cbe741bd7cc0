#include "formats/Decimal.h"

#include <algorithm>

namespace dubrix {

namespace {

/// Whether `number`, for which a double has no room, is too near 0 and not too far from it.
bool isTooSmall(std::string_view number) {
    const std::string_view digits = number.substr(0, number.find_first_of("eE"));
    std::string_view power = number.substr(std::min(digits.size() + 1, number.size()));
    if (power.starts_with('+'))
        power.remove_prefix(1);
    long exponent = 0;
    const auto read = std::from_chars(power.data(), power.data() + power.size(), exponent);
    if (read.ec == std::errc::result_out_of_range)
        return power.starts_with('-');
    const auto point = static_cast<long>(std::min(digits.find('.'), digits.size()));
    const auto first = static_cast<long>(digits.find_first_not_of("0."));
    return exponent < first - point;
}

} // namespace

std::from_chars_result readDecimal(std::string_view text, double& number) {
    auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    const auto length = static_cast<std::size_t>(read.ptr - text.data());
    if (read.ec == std::errc::result_out_of_range && isTooSmall(text.substr(0, length))) {
        number = 0;
        read.ec = {};
    }
    return read;
}

} // namespace dubrix
