#include "terminal/Color.h"

#include "formats/text/PlainText.h"
#include "terminal/ColorNames.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>

namespace dubrix {

namespace {

TintColor fromBytes(unsigned red, unsigned green, unsigned blue) {
    const auto part = [](unsigned byte) { return static_cast<float>(byte) / 255.0F; };
    return {part(red), part(green), part(blue)};
}

TintColor fromNumber(std::uint32_t number) {
    return fromBytes(number >> 16 & 0xff, number >> 8 & 0xff, number & 0xff);
}

/// Without those around it.
std::string_view withoutBlanks(std::string_view text) {
    const std::size_t start = std::min(text.find_first_not_of(' '), text.size());
    return text.substr(start, text.find_last_not_of(' ') + 1 - start);
}

/// The whole text as a number; nothing for any other.
std::optional<std::uint32_t> numberIn(std::string_view text, int base) {
    std::uint32_t number = 0;
    const char* const last = text.data() + text.size();
    const auto read = std::from_chars(text.data(), last, number, base);
    return read.ec == std::errc() && read.ptr == last ? std::optional(number) : std::nullopt;
}

std::optional<TintColor> ofComponents(std::string_view text) {
    std::array<unsigned, 3> bytes{};
    for (std::size_t index = 0; index < bytes.size(); ++index) {
        const std::size_t end = index < 2 ? text.find(',') : text.size();
        const auto number = numberIn(withoutBlanks(text.substr(0, end)), 10);
        if (end == text.npos || !number || *number > 255)
            return std::nullopt;
        bytes[index] = *number;
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return fromBytes(bytes[0], bytes[1], bytes[2]);
}

} // namespace

std::optional<TintColor> colorIn(std::string_view text) {
    text = withoutBlanks(text);
    if (text.starts_with('#')) {
        const auto number = numberIn(text.substr(1), 16);
        return number && text.size() == 7 ? std::optional(fromNumber(*number)) : std::nullopt;
    }
    const std::string name = lowerCase(text);
    const auto found = std::ranges::find(colorNames, name, &ColorName::name);
    return found != colorNames.end() ? std::optional(fromNumber(found->color)) : ofComponents(text);
}

std::string textOf(const TintColor& color) {
    const auto byte = [](float part) {
        return static_cast<unsigned>(std::lround(std::clamp(part, 0.0F, 1.0F) * 255.0F));
    };
    std::array<char, 8> text{};
    std::snprintf(text.data(), text.size(), "#%02x%02x%02x", byte(color[0]), byte(color[1]),
                  byte(color[2]));
    return text.data();
}

} // namespace dubrix
