#pragma once

#include <charconv>
#include <string_view>

namespace dubrix {

/// Reads the decimal number that `text` begins with, as std::from_chars does and in any locale, but
/// one too small for a double is 0. What is too large leaves `number` alone and is out of range.
std::from_chars_result readDecimal(std::string_view text, double& number);

} // namespace dubrix
