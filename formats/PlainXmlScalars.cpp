#include "formats/PlainXml.h"
#include "formats/PropertyListWriters.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>

namespace dubrix {

namespace {

bool isDigits(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789") == text.npos;
}

template<class Number, class... Base>
bool parsesWhole(std::string_view text, Number& number, Base... base) {
    const char* last = text.data() + text.size();
    auto [end, error] = std::from_chars(text.data(), last, number, base...);
    return error == std::errc() && end == last;
}

/// A word that stands for no finite number, as the common readers know it.
std::optional<std::string> specialReal(std::string_view lowered) {
    if (lowered == "nan")
        return "nan";
    if (lowered == "inf" || lowered == "infinity")
        return "inf";
    return std::nullopt;
}

} // namespace

std::optional<std::string> plainInteger(std::string_view text) {
    const bool isNegative = text.starts_with('-');
    if (isNegative || text.starts_with('+'))
        text.remove_prefix(1);
    const bool isHexadecimal = text.starts_with("0x") || text.starts_with("0X");
    text.remove_prefix(isHexadecimal ? 2 : 0);
    constexpr std::uint64_t mostNegative = std::uint64_t{1} << 63;
    std::uint64_t magnitude = 0;
    if (!parsesWhole(text, magnitude, isHexadecimal ? 16 : 10) ||
        (isNegative && magnitude > mostNegative))
        return std::nullopt;
    return (isNegative && magnitude != 0 ? "-" : "") + std::to_string(magnitude);
}

std::optional<std::string> plainReal(std::string_view text) {
    const bool isNegative = text.starts_with('-');
    if (isNegative || text.starts_with('+'))
        text.remove_prefix(1);
    const std::string sign = isNegative ? "-" : "";
    std::string lowered;
    for (char character : text)
        lowered +=
            character >= 'A' && character <= 'Z' ? static_cast<char>(character + 32) : character;
    if (auto special = specialReal(lowered))
        return sign + *special;
    double number = 0;
    if (lowered.find_first_not_of("0123456789.e+-") != lowered.npos || lowered[0] == '-' ||
        !parsesWhole(lowered, number))
        return std::nullopt;
    // One digit, a point, sixteen digits and an exponent name a double uniquely; the point goes.
    constexpr int digits = 16;
    std::array<char, 64> buffer{};
    auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number,
                                std::chars_format::scientific, digits);
    std::string_view spelling(buffer.data(), static_cast<std::size_t>(result.ptr - buffer.data()));
    int exponent = 0;
    std::string_view power = spelling.substr(digits + 3);
    power.remove_prefix(power.starts_with('+') ? 1 : 0);
    if (!parsesWhole(power, exponent))
        return std::nullopt;
    return sign + spelling[0] + std::string(spelling.substr(2, digits)) + "e" +
           std::to_string(exponent - digits);
}

std::optional<std::string> plainDate(std::string_view text) {
    const std::size_t yearLength = text.find('-');
    if (yearLength == text.npos || yearLength > 4 || !isDigits(text.substr(0, yearLength)))
        return std::nullopt;
    const std::string padded = std::string(4 - yearLength, '0') + std::string(text);
    constexpr std::string_view pattern = "dddd-dd-ddTdd:dd:ddZ";
    if (padded.size() != pattern.size())
        return std::nullopt;
    for (std::size_t index = 0; index < pattern.size(); ++index)
        if (pattern[index] == 'd' ? !isDigits(std::string_view(padded).substr(index, 1))
                                  : padded[index] != pattern[index])
            return std::nullopt;
    auto number = [&](std::size_t index) {
        return (padded[index] - '0') * 10 + padded[index + 1] - '0';
    };
    const int month = number(5);
    const int day = number(8);
    if (padded.starts_with("0000") || month < 1 || month > 12 || day < 1 || day > 31 ||
        number(11) > 23 || number(14) > 59 || number(17) > 59)
        return std::nullopt;
    return padded;
}

std::optional<std::string> plainBase64(std::string_view text) {
    std::string symbols;
    std::size_t padding = 0;
    for (char character : text) {
        if (character == ' ' || character == '\t' || character == '\r' || character == '\n')
            continue;
        const bool isLetter = (character >= 'A' && character <= 'Z') ||
                              (character >= 'a' && character <= 'z') ||
                              (character >= '0' && character <= '9');
        if (character == '=')
            ++padding;
        else if (padding != 0 || (!isLetter && character != '+' && character != '/'))
            return std::nullopt;
        else
            symbols += character;
    }
    const std::size_t missing = (4 - symbols.size() % 4) % 4;
    if (missing == 3 || padding > 2 || (padding != 0 && padding != missing))
        return std::nullopt;
    return symbols.append(missing, '=');
}

} // namespace dubrix
