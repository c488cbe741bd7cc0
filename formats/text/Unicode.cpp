#include "formats/text/Unicode.h"

#include <cstdint>
#include <cstring>

namespace dubrix {

namespace {

constexpr char32_t invalid = 0xFFFFFFFF;

unsigned byteAt(std::string_view text, std::size_t index) {
    return static_cast<unsigned char>(text[index]);
}

bool isSurrogate(char32_t number) {
    return number >= 0xD800 && number <= 0xDFFF;
}

/// The scalar value at `index`, which moves past it; `invalid` where the bytes are not UTF-8.
char32_t nextScalar(std::string_view text, std::size_t& index) {
    const unsigned lead = byteAt(text, index++);
    if (lead < 0x80)
        return lead;
    const std::size_t following = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
    constexpr char32_t leastOf[] = {0, 0x80, 0x800, 0x10000};
    if (lead < 0xC2 || lead > 0xF4 || text.size() - index < following)
        return invalid;
    char32_t scalar = lead & (0x3FU >> following);
    for (std::size_t count = 0; count < following; ++count) {
        const unsigned next = byteAt(text, index++);
        if ((next & 0xC0) != 0x80)
            return invalid;
        scalar = scalar << 6 | (next & 0x3F);
    }
    if (scalar < leastOf[following] || scalar > 0x10FFFF || isSurrogate(scalar))
        return invalid;
    return scalar;
}

} // namespace

bool isUtf8(std::string_view text) {
    constexpr std::uint64_t highBits = 0x8080808080808080;
    for (std::size_t index = 0; index < text.size();) {
        std::uint64_t eight = highBits;
        if (text.size() - index >= sizeof eight)
            std::memcpy(&eight, text.data() + index, sizeof eight);
        if ((eight & highBits) == 0)
            index += sizeof eight;
        else if (nextScalar(text, index) == invalid)
            return false;
    }
    return true;
}

std::optional<char32_t> takeScalar(std::string_view text, std::size_t& index) {
    const std::size_t start = index;
    const char32_t scalar = nextScalar(text, index);
    if (scalar != invalid)
        return scalar;
    index = start + 1;
    return std::nullopt;
}

std::string repairedUtf8(std::string_view text) {
    std::string repaired;
    for (std::size_t index = 0; index < text.size();) {
        const char32_t scalar = takeScalar(text, index).value_or(0);
        appendUtf8(repaired, scalar == 0 ? U'\uFFFD' : scalar);
    }
    return repaired;
}

bool appendUtf8(std::string& text, char32_t scalar) {
    if (scalar > 0x10FFFF || isSurrogate(scalar))
        return false;
    if (scalar < 0x80) {
        text += static_cast<char>(scalar);
        return true;
    }
    const int following = scalar < 0x800 ? 1 : scalar < 0x10000 ? 2 : 3;
    constexpr unsigned leadOf[] = {0, 0xC0, 0xE0, 0xF0};
    text += static_cast<char>(leadOf[following] | scalar >> (6 * following));
    for (int shift = 6 * (following - 1); shift >= 0; shift -= 6)
        text += static_cast<char>(0x80 | (scalar >> shift & 0x3F));
    return true;
}

std::optional<std::string> utf8FromUtf16(std::string_view bytes, ByteOrder order) {
    if (bytes.size() % 2 != 0)
        return std::nullopt;
    const std::size_t high = order == ByteOrder::Big ? 0 : 1;
    auto unitAt = [&](std::size_t index) -> char32_t {
        return byteAt(bytes, index + high) << 8 | byteAt(bytes, index + 1 - high);
    };
    std::string text;
    for (std::size_t index = 0; index < bytes.size(); index += 2) {
        char32_t scalar = unitAt(index);
        if (scalar >= 0xD800 && scalar <= 0xDBFF && index + 4 <= bytes.size()) {
            const char32_t low = unitAt(index + 2);
            if (low < 0xDC00 || low > 0xDFFF)
                return std::nullopt;
            scalar = 0x10000 + ((scalar - 0xD800) << 10) + (low - 0xDC00);
            index += 2;
        }
        if (!appendUtf8(text, scalar))
            return std::nullopt;
    }
    return text;
}

std::string utf8FromLatin1(std::string_view bytes) {
    std::string text;
    for (char byte : bytes)
        appendUtf8(text, static_cast<unsigned char>(byte));
    return text;
}

std::optional<std::string> utf8FromMarkedText(std::string_view bytes) {
    if (bytes.starts_with("\xFF\xFE"))
        return utf8FromUtf16(bytes.substr(2), ByteOrder::Little);
    if (bytes.starts_with("\xFE\xFF"))
        return utf8FromUtf16(bytes.substr(2), ByteOrder::Big);
    if (bytes.starts_with("\xEF\xBB\xBF"))
        bytes.remove_prefix(3);
    if (!isUtf8(bytes))
        return std::nullopt;
    return std::string(bytes);
}

std::u16string utf16FromUtf8(std::string_view utf8) {
    std::u16string units;
    for (std::size_t index = 0; index < utf8.size();) {
        const char32_t scalar = nextScalar(utf8, index);
        if (scalar < 0x10000) {
            units += static_cast<char16_t>(scalar);
        } else if (scalar != invalid) {
            units += static_cast<char16_t>(0xD800 + ((scalar - 0x10000) >> 10));
            units += static_cast<char16_t>(0xDC00 + ((scalar - 0x10000) & 0x3FF));
        }
    }
    return units;
}

} // namespace dubrix
