#include "formats/lists/XmlScalars.h"

#include "formats/text/Decimal.h"

#include <chrono>
#include <cstdint>
#include <limits>

namespace dubrix {

namespace {

bool isDigits(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789") == text.npos;
}

/// Whether a number was read and is all of `text`.
bool isWhole(std::from_chars_result read, std::string_view text) {
    return read.ec == std::errc() && read.ptr == text.data() + text.size();
}

/// A word that stands for no finite number, as the common readers know it.
std::optional<double> specialReal(std::string_view lowered) {
    if (lowered == "nan")
        return std::numeric_limits<double>::quiet_NaN();
    if (lowered == "inf" || lowered == "infinity")
        return std::numeric_limits<double>::infinity();
    return std::nullopt;
}

/// The value of a symbol of base64; nothing for other characters.
std::optional<unsigned> sixBits(char symbol) {
    if (symbol >= 'A' && symbol <= 'Z')
        return symbol - 'A';
    if (symbol >= 'a' && symbol <= 'z')
        return symbol - 'a' + 26;
    if (symbol >= '0' && symbol <= '9')
        return symbol - '0' + 52;
    if (symbol == '+' || symbol == '/')
        return symbol == '+' ? 62 : 63;
    return std::nullopt;
}

} // namespace

std::optional<PropertyListNode> xmlInteger(std::string_view text) {
    const bool isNegative = text.starts_with('-');
    if (isNegative || text.starts_with('+'))
        text.remove_prefix(1);
    const bool isHexadecimal = text.starts_with("0x") || text.starts_with("0X");
    text.remove_prefix(isHexadecimal ? 2 : 0);
    constexpr std::uint64_t mostNegative = std::uint64_t{1} << 63;
    std::uint64_t magnitude = 0;
    const char* const last = text.data() + text.size();
    const auto read = std::from_chars(text.data(), last, magnitude, isHexadecimal ? 16 : 10);
    if (!isWhole(read, text) || (isNegative && magnitude > mostNegative))
        return std::nullopt;
    if (!isNegative && magnitude > std::numeric_limits<std::int64_t>::max())
        return PropertyListNode{magnitude};
    return PropertyListNode{static_cast<std::int64_t>(isNegative ? 0 - magnitude : magnitude)};
}

std::optional<double> xmlReal(std::string_view text) {
    const bool isNegative = text.starts_with('-');
    if (isNegative || text.starts_with('+'))
        text.remove_prefix(1);
    const double sign = isNegative ? -1 : 1;
    std::string lowered;
    for (char character : text)
        lowered +=
            character >= 'A' && character <= 'Z' ? static_cast<char>(character + 32) : character;
    if (auto special = specialReal(lowered))
        return sign * *special;
    double number = 0;
    if (!isWhole(readDecimal(lowered, number), lowered))
        return std::nullopt;
    return sign * number;
}

std::optional<double> xmlDate(std::string_view text) {
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
    using namespace std::chrono;
    const sys_days first = year(number(0) * 100 + number(2)) / month / 1;
    const sys_seconds moment =
        first + days(day - 1) + hours(number(11)) + minutes(number(14)) + seconds(number(17));
    const seconds since = moment - sys_days(2001y / January / 1);
    return static_cast<double>(since.count());
}

std::optional<std::string> xmlData(std::string_view text) {
    std::string data;
    std::uint32_t bits = 0;
    std::size_t symbols = 0;
    std::size_t padding = 0;
    for (char character : text) {
        if (character == ' ' || character == '\t' || character == '\r' || character == '\n')
            continue;
        if (character == '=') {
            ++padding;
            continue;
        }
        const auto value = sixBits(character);
        if (padding != 0 || !value)
            return std::nullopt;
        bits = bits << 6 | *value;
        if (++symbols % 4 == 0)
            for (int shift : {16, 8, 0})
                data += static_cast<char>(bits >> shift & 0xFF);
    }
    const std::size_t missing = (4 - symbols % 4) % 4;
    if (missing == 3 || padding > 2 || (padding != 0 && padding != missing))
        return std::nullopt;
    // Two symbols are one byte and four bits that do not count, three are two bytes and two bits.
    if (missing == 2)
        data += static_cast<char>(bits >> 4 & 0xFF);
    if (missing == 1)
        data.append({static_cast<char>(bits >> 10 & 0xFF), static_cast<char>(bits >> 2 & 0xFF)});
    return data;
}

} // namespace dubrix
