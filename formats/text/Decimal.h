#pragma once

#include <charconv>
#include <string_view>

namespace dubrix {

/// Reads the decimal number without a sign ("12", ".5", "1.5e-3") that `text` begins with, as
/// std::from_chars would and in any locale, but one too small for a double is 0. What is too large
/// leaves `number` alone and is out of range.
std::from_chars_result readDecimal(std::string_view text, double& number);

} // namespace dubrix
