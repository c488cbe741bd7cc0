#include "device/judge/Addresses.h"

#include "formats/text/PlainText.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <string>

namespace dubrix {

namespace {

constexpr std::size_t longestAddress = 2048;

bool isLetterOrDigit(char byte) {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
           (byte >= '0' && byte <= '9');
}

bool mayStand(char byte) {
    constexpr std::string_view marks = "-._~:/?#[]@!$&()*+,;=%";
    return isLetterOrDigit(byte) || marks.find(byte) != std::string_view::npos;
}

/// Nothing where a "%" is not followed by two digits.
std::optional<std::string> decoded(std::string_view text) {
    std::string result;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '%') {
            result += text[at];
            continue;
        }
        const std::string_view digits = text.substr(at + 1, 2);
        unsigned char value = 0;
        const auto [end, error] =
            std::from_chars(digits.data(), digits.data() + digits.size(), value, 16);
        if (digits.size() != 2 || error != std::errc() || end != digits.data() + 2)
            return std::nullopt;
        result += static_cast<char>(value);
        at += 2;
    }
    return result;
}

enum class LineBreaks { Allowed, Refused };

bool isHarmlessInMail(std::string_view encoded, LineBreaks lineBreaks) {
    const std::optional<std::string> text = decoded(encoded);
    return text && std::ranges::all_of(*text, [lineBreaks](unsigned char byte) {
               if (byte == '\n' || byte == '\r' || byte == '\t')
                   return lineBreaks == LineBreaks::Allowed;
               return byte >= ' ' && byte != 0x7f && byte != '"' && byte != '\'' && byte != '`' &&
                      byte != '\\';
           });
}

bool isMailParameter(std::string_view parameter) {
    const std::size_t sign = parameter.find('=');
    if (sign == std::string_view::npos)
        return false;
    const std::string key = lowerCase(decoded(parameter.substr(0, sign)).value_or(""));
    const std::string_view value = parameter.substr(sign + 1);
    if (key == "body")
        return isHarmlessInMail(value, LineBreaks::Allowed);
    return (key == "to" || key == "subject") && isHarmlessInMail(value, LineBreaks::Refused);
}

/// What follows "mailto:". A "&" before the "?", a second "?" or a "#" would leave it to the mail
/// program where the parameters begin and end.
bool isMail(std::string_view rest) {
    const std::size_t mark = rest.find('?');
    const std::string_view recipients = rest.substr(0, mark);
    if (rest.find('#') != std::string_view::npos ||
        recipients.find('&') != std::string_view::npos ||
        !isHarmlessInMail(recipients, LineBreaks::Refused))
        return false;
    if (mark == std::string_view::npos)
        return !rest.empty();
    rest.remove_prefix(mark + 1);
    if (rest.find('?') != std::string_view::npos)
        return false;
    while (true) {
        const std::size_t end = rest.find('&');
        if (!isMailParameter(rest.substr(0, end)))
            return false;
        if (end == std::string_view::npos)
            return true;
        rest.remove_prefix(end + 1);
    }
}

/// What follows "http:" or "https:".
bool isPage(std::string_view rest) {
    constexpr std::string_view start = "//";
    return rest.starts_with(start) && rest.size() > start.size() &&
           (isLetterOrDigit(rest[start.size()]) || rest[start.size()] == '[') && decoded(rest);
}

} // namespace

bool mayBeOpened(std::string_view address) {
    const std::size_t colon = address.find(':');
    if (address.size() > longestAddress || colon == std::string_view::npos ||
        !std::ranges::all_of(address, mayStand))
        return false;
    const std::string scheme = lowerCase(address.substr(0, colon));
    const std::string_view rest = address.substr(colon + 1);
    if (scheme == "mailto")
        return isMail(rest);
    return (scheme == "http" || scheme == "https") && isPage(rest);
}

} // namespace dubrix
