#include "device/confine/VisibleText.h"

#include "formats/text/PlainText.h"
#include "formats/text/Unicode.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <optional>
#include <utility>

namespace dubrix {

namespace {

std::string spelt(const char* format, unsigned value) {
    char text[16];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

/// How many bytes the letter has that begins with this one; 0 for none.
std::size_t sizeOfLetter(unsigned char first) {
    if (first < 0x80)
        return 1;
    if (first >= 0xc2 && first <= 0xdf)
        return 2;
    if (first >= 0xe0 && first <= 0xef)
        return 3;
    return first >= 0xf0 && first <= 0xf4 ? 4 : 0;
}

/// Whether the byte may follow `first` in the second place: shortest forms only, no surrogates.
bool maySecond(unsigned char first, unsigned char second) {
    switch (first) {
    case 0xe0:
        return second >= 0xa0 && second <= 0xbf;
    case 0xed:
        return second >= 0x80 && second <= 0x9f;
    case 0xf0:
        return second >= 0x90 && second <= 0xbf;
    case 0xf4:
        return second >= 0x80 && second <= 0x8f;
    default:
        return second >= 0x80 && second <= 0xbf;
    }
}

/// The size of the whole letter at the beginning, 0 when there is none, nothing when more bytes
/// have to decide.
std::optional<std::size_t> letterAt(std::string_view bytes) {
    const auto byte = [bytes](std::size_t index) {
        return static_cast<unsigned char>(bytes[index]);
    };
    const std::size_t size = sizeOfLetter(byte(0));
    for (std::size_t index = 1; index < size; ++index) {
        if (index == bytes.size())
            return std::nullopt;
        const bool fits = index == 1 ? maySecond(byte(0), byte(1)) : (byte(index) & 0xc0) == 0x80;
        if (!fits)
            return 0;
    }
    return size;
}

std::string shown(std::string_view letter) {
    std::size_t index = 0;
    const char32_t symbol = takeScalar(letter, index).value_or(0);
    if (symbol == '\n' || symbol == '\t' || !actsOnLine(symbol))
        return std::string(letter);
    return spelt(letter.size() == 1 ? "\\x%02x" : "\\u%04x", symbol);
}

} // namespace

std::string VisibleText::take(std::string_view bytes) {
    const std::string all = std::move(waiting_) + std::string(bytes);
    waiting_.clear();
    std::string text;
    text.reserve(all.size());
    for (std::string_view left = all; !left.empty();) {
        const std::optional<std::size_t> size = letterAt(left);
        if (!size) {
            waiting_ = left;
            break;
        }
        if (*size == 0)
            text += spelt("\\x%02x", static_cast<unsigned char>(left[0]));
        else
            text += shown(left.substr(0, *size));
        left.remove_prefix(std::max<std::size_t>(*size, 1));
    }
    return text;
}

std::string VisibleText::end() {
    std::string text;
    for (const char byte : std::exchange(waiting_, {}))
        text += spelt("\\x%02x", static_cast<unsigned char>(byte));
    return text;
}

} // namespace dubrix
