#include "formats/lists/XmlScanner.h"

#include "formats/text/Unicode.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <utility>

namespace dubrix {

namespace {

constexpr std::string_view xmlBlanks = " \t\r\n";

bool isNameCharacter(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
           (character >= '0' && character <= '9') || character == '_' || character == ':' ||
           character == '-' || character == '.' || static_cast<unsigned char>(character) >= 0x80;
}

} // namespace

bool XmlScanner::skip(std::string_view mark) {
    if (!rest_.starts_with(mark))
        return false;
    rest_.remove_prefix(mark.size());
    return true;
}

bool XmlScanner::skipThrough(std::string_view mark) {
    const std::size_t place = rest_.find(mark);
    if (place == rest_.npos)
        return false;
    rest_.remove_prefix(place + mark.size());
    return true;
}

void XmlScanner::skipBlanks() {
    rest_.remove_prefix(std::min(rest_.find_first_not_of(xmlBlanks), rest_.size()));
}

bool XmlScanner::skipBetween() {
    for (;;) {
        skipBlanks();
        if (skip("<!--")) {
            if (!skipThrough("-->"))
                return false;
        } else if (skip("<?")) {
            if (!skipThrough("?>"))
                return false;
        } else {
            return true;
        }
    }
}

bool XmlScanner::skipProlog() {
    if (!skipBetween())
        return false;
    return !skip("<!DOCTYPE") || (skipDocumentType() && skipBetween());
}

bool XmlScanner::skipDocumentType() {
    int brackets = 0;
    while (!rest_.empty()) {
        const char character = rest_.front();
        if (skip("<!--")) {
            if (!skipThrough("-->"))
                return false;
            continue;
        }
        rest_.remove_prefix(1);
        if (character == '"' || character == '\'') {
            if (!skipThrough(std::string_view(&character, 1)))
                return false;
        } else if (character == '[') {
            ++brackets;
        } else if (character == ']') {
            --brackets;
        } else if (character == '>' && brackets == 0) {
            return true;
        }
    }
    return false;
}

std::string_view XmlScanner::name() {
    auto end = std::find_if_not(rest_.begin(), rest_.end(), isNameCharacter);
    std::string_view name = rest_.substr(0, static_cast<std::size_t>(end - rest_.begin()));
    rest_.remove_prefix(name.size());
    return name;
}

std::optional<XmlTag> XmlScanner::tag() {
    if (!skip("<"))
        return std::nullopt;
    const bool isEnd = skip("/");
    XmlTag tag{name(), isEnd ? XmlTag::Kind::End : XmlTag::Kind::Start};
    if (tag.name.empty() || (!isEnd && !skipAttributes()))
        return std::nullopt;
    skipBlanks();
    if (!isEnd && skip("/"))
        tag.kind = XmlTag::Kind::Empty;
    if (!skip(">"))
        return std::nullopt;
    return tag;
}

bool XmlScanner::skipAttributes() {
    for (;;) {
        const bool isApart = rest_.find_first_not_of(xmlBlanks) != 0;
        skipBlanks();
        if (rest_.starts_with('>') || rest_.starts_with('/'))
            return true;
        if (!isApart || name().empty())
            return false;
        skipBlanks();
        if (!skip("="))
            return false;
        skipBlanks();
        if (!(skip("\"") ? skipThrough("\"") : skip("'") && skipThrough("'")))
            return false;
    }
}

std::optional<std::string> XmlScanner::textUntilEnd(std::string_view elementName) {
    std::string text;
    for (;;) {
        const auto end = std::ranges::find_if(
            rest_, [](char byte) { return byte == '<' || byte == '&' || byte == '\0'; });
        if (end == rest_.end())
            return std::nullopt;
        const auto place = static_cast<std::size_t>(end - rest_.begin());
        text += rest_.substr(0, place);
        rest_.remove_prefix(place);
        if (skip("<!--")) {
            if (!skipThrough("-->"))
                return std::nullopt;
        } else if (skip("<![CDATA[")) {
            const std::string_view section = rest_;
            if (!skipThrough("]]>"))
                return std::nullopt;
            text += section.substr(0, section.size() - rest_.size() - 3);
            if (text.find('\0') != text.npos)
                return std::nullopt;
        } else if (skip("&")) {
            if (!appendReference(text))
                return std::nullopt;
        } else {
            const auto ending = tag();
            if (!ending || ending->kind != XmlTag::Kind::End || ending->name != elementName)
                return std::nullopt;
            return text;
        }
    }
}

bool XmlScanner::appendReference(std::string& text) {
    constexpr std::size_t longest = 12;
    const std::size_t length = rest_.substr(0, longest).find(';');
    if (length == rest_.npos)
        return false;
    std::string_view reference = rest_.substr(0, length);
    rest_.remove_prefix(length + 1);
    if (!reference.starts_with('#')) {
        constexpr std::pair<std::string_view, char> known[] = {
            {"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}};
        for (auto [word, character] : known) {
            if (reference == word) {
                text += character;
                return true;
            }
        }
        return false;
    }
    reference.remove_prefix(1);
    const bool isHexadecimal = reference.starts_with('x');
    reference.remove_prefix(isHexadecimal ? 1 : 0);
    std::uint32_t scalar = 0;
    const char* last = reference.data() + reference.size();
    auto [end, error] = std::from_chars(reference.data(), last, scalar, isHexadecimal ? 16 : 10);
    return error == std::errc() && end == last && scalar != 0 && appendUtf8(text, scalar);
}

std::string declaredXmlEncoding(std::string_view bytes) {
    if (!bytes.starts_with("<?xml"))
        return {};
    std::string_view declaration = bytes.substr(0, bytes.find("?>"));
    const std::size_t place = declaration.find("encoding");
    if (place == declaration.npos)
        return {};
    declaration.remove_prefix(place);
    const std::size_t open = declaration.find_first_of("\"'");
    if (open == declaration.npos)
        return {};
    const std::size_t close = declaration.find(declaration[open], open + 1);
    std::string encoding(declaration.substr(open + 1, close - open - 1));
    std::transform(encoding.begin(), encoding.end(), encoding.begin(), [](char character) {
        return character >= 'A' && character <= 'Z' ? static_cast<char>(character + 32) : character;
    });
    return encoding;
}

std::string escapedXml(std::string_view text) {
    std::string result;
    for (char character : text) {
        switch (character) {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        case '\r':
            result += "&#13;";
            break;
        default:
            result += character;
        }
    }
    return result;
}

std::string_view trimmedXmlBlanks(std::string_view text) {
    const std::size_t first = text.find_first_not_of(xmlBlanks);
    if (first == text.npos)
        return {};
    return text.substr(first, text.find_last_not_of(xmlBlanks) - first + 1);
}

} // namespace dubrix
