#include "formats/text/Decimal.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <locale.h>
#include <string>

namespace dubrix {

namespace {

std::size_t digitsAt(std::string_view text, std::size_t start) {
    const std::size_t end = text.find_first_not_of("0123456789", start);
    return (end == text.npos ? text.size() : end) - std::min(start, text.size());
}

/// How many characters of `text` are a number; 0 for none.
std::size_t lengthOfDecimal(std::string_view text) {
    std::size_t length = digitsAt(text, 0);
    std::size_t digits = length;
    if (text.substr(length).starts_with('.')) {
        const std::size_t decimals = digitsAt(text, length + 1);
        digits += decimals;
        length += 1 + decimals;
    }
    if (digits == 0)
        return 0;
    std::size_t exponent = length;
    if (text.substr(exponent).starts_with('e') || text.substr(exponent).starts_with('E'))
        ++exponent;
    else
        return length;
    if (text.substr(exponent).starts_with('+') || text.substr(exponent).starts_with('-'))
        ++exponent;
    const std::size_t power = digitsAt(text, exponent);
    return power == 0 ? length : exponent + power;
}

} // namespace

std::from_chars_result readDecimal(std::string_view text, double& number) {
    // Not every standard library's from_chars reads real numbers; the C library's function does, in
    // the locale that it is given.
    static const locale_t plain = ::newlocale(LC_ALL_MASK, "C", nullptr);
    const std::string decimal(text.substr(0, lengthOfDecimal(text)));
    const char* const end = text.data() + decimal.size();
    if (decimal.empty())
        return {end, std::errc::invalid_argument};
    const double read = ::strtod_l(decimal.c_str(), nullptr, plain);
    if (std::isinf(read))
        return {end, std::errc::result_out_of_range};
    number = read;
    return {end, {}};
}

} // namespace dubrix
