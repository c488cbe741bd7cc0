#include "formats/lists/PropertyListForms.h"
#include "formats/text/CodePages.h"
#include "formats/text/Unicode.h"

#include <algorithm>

namespace dubrix {

namespace {

using Node = PropertyListNode;

int hexadecimalDigit(char character) {
    if (character >= '0' && character <= '9')
        return character - '0';
    if (character >= 'a' && character <= 'f')
        return character - 'a' + 10;
    if (character >= 'A' && character <= 'F')
        return character - 'A' + 10;
    return -1;
}

bool isBareCharacter(char character) {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
           (character >= '0' && character <= '9') ||
           std::string_view("_$/:.-").find(character) != std::string_view::npos;
}

class TextReader {
public:
    explicit TextReader(std::string_view text) : rest_(text) {}

    std::optional<Node> read() {
        const std::string_view start = rest_;
        auto node = value(0);
        if (node && skipBlanks() && rest_.empty())
            return node;
        if (!node || !node->as<std::string>())
            return std::nullopt;
        rest_ = start;
        node = pairs(1);
        return rest_.empty() ? std::move(node) : std::nullopt;
    }

private:
    std::optional<Node> value(int depth) {
        if (++values_ > maximumPropertyListValues || !skipBlanks() || rest_.empty())
            return std::nullopt;
        if (skip('{')) {
            auto node = depth < maximumPropertyListDepth ? pairs(depth + 1) : std::nullopt;
            return node && skip('}') ? std::move(node) : std::nullopt;
        }
        if (skip('('))
            return depth < maximumPropertyListDepth ? array(depth + 1) : std::nullopt;
        if (skip('<'))
            return data();
        auto text = string();
        return text ? std::optional(Node{std::move(*text)}) : std::nullopt;
    }

    /// Pairs up to a closing brace, which is left, or the end.
    std::optional<Node> pairs(int depth) {
        PropertyListDictionaryBuilder entries;
        for (;;) {
            if (!skipBlanks())
                return std::nullopt;
            if (rest_.empty() || rest_.front() == '}')
                break;
            auto key = string();
            if (!key || !skipBlanks())
                return std::nullopt;
            auto item = std::optional(Node{*key}); // "key;" is short for "key = key;"
            if (skip('='))
                item = value(depth);
            if (!item || !skipBlanks() || !skip(';'))
                return std::nullopt;
            entries.put(std::move(*key)) = std::move(*item);
        }
        return entries.take();
    }

    std::optional<Node> array(int depth) {
        Node::Array values;
        for (;;) {
            if (!skipBlanks())
                return std::nullopt;
            if (skip(')'))
                return Node{std::move(values)};
            auto item = value(depth);
            if (!item || !skipBlanks())
                return std::nullopt;
            values.push_back(std::move(*item));
            if (!skip(',') && !rest_.starts_with(')'))
                return std::nullopt;
        }
    }

    std::optional<Node> data() {
        std::string bytes;
        int high = -1;
        while (!rest_.empty()) {
            const char character = rest_.front();
            rest_.remove_prefix(1);
            const int digit = hexadecimalDigit(character);
            if (character == '>')
                return high < 0 ? std::optional(Node{Node::Data{std::move(bytes)}}) : std::nullopt;
            if (digit < 0) {
                if (std::string_view(" \t\r\n").find(character) == std::string_view::npos)
                    return std::nullopt;
            } else if (high < 0) {
                high = digit;
            } else {
                bytes += static_cast<char>(high << 4 | digit);
                high = -1;
            }
        }
        return std::nullopt;
    }

    std::optional<std::string> string() {
        if (skip('"'))
            return quoted('"');
        if (skip('\''))
            return quoted('\'');
        auto end = std::find_if_not(rest_.begin(), rest_.end(), isBareCharacter);
        std::string text(rest_.begin(), end);
        rest_.remove_prefix(text.size());
        return text.empty() ? std::nullopt : std::optional(std::move(text));
    }

    std::optional<std::string> quoted(char quote) {
        std::string text;
        while (!rest_.empty()) {
            const char character = rest_.front();
            rest_.remove_prefix(1);
            if (character == quote)
                return text;
            if (character == '\0' || (character == '\\' && !appendEscape(text)))
                return std::nullopt;
            if (character != '\\')
                text += character;
        }
        return std::nullopt;
    }

    bool appendEscape(std::string& text) {
        if (rest_.empty())
            return false;
        const char character = rest_.front();
        if (character >= '0' && character <= '7')
            return appendOctal(text);
        rest_.remove_prefix(1);
        if (character == 'U' || character == 'u')
            return appendUnicode(text);
        constexpr std::string_view letters = "abfnrtv";
        constexpr std::string_view meanings = "\a\b\f\n\r\t\v";
        const std::size_t index = letters.find(character);
        text += index == letters.npos ? character : meanings[index];
        return character != '\0';
    }

    bool appendOctal(std::string& text) {
        unsigned number = 0;
        for (int count = 0; count < 3 && !rest_.empty(); ++count) {
            if (rest_.front() < '0' || rest_.front() > '7')
                break;
            number = number * 8 + static_cast<unsigned>(rest_.front() - '0');
            rest_.remove_prefix(1);
        }
        return number != 0 && number <= 0xFF && appendUtf8(text, scalarFromNextStep(number));
    }

    /// One UTF-16 unit of up to four digits; a high surrogate needs its other half right behind.
    bool appendUnicode(std::string& text) {
        char32_t scalar = hexadecimalUnit();
        if (scalar >= 0xD800 && scalar <= 0xDBFF) {
            if (!rest_.starts_with("\\U") && !rest_.starts_with("\\u"))
                return false;
            rest_.remove_prefix(2);
            const char32_t low = hexadecimalUnit();
            if (low < 0xDC00 || low > 0xDFFF)
                return false;
            scalar = 0x10000 + ((scalar - 0xD800) << 10) + (low - 0xDC00);
        }
        return scalar != 0 && appendUtf8(text, scalar);
    }

    char32_t hexadecimalUnit() {
        char32_t unit = 0;
        for (int count = 0; count < 4 && !rest_.empty(); ++count) {
            const int digit = hexadecimalDigit(rest_.front());
            if (digit < 0)
                break;
            unit = unit << 4 | static_cast<char32_t>(digit);
            rest_.remove_prefix(1);
        }
        return unit;
    }

    bool skip(char character) {
        if (!rest_.starts_with(character))
            return false;
        rest_.remove_prefix(1);
        return true;
    }

    /// Passes blanks and comments; false at a comment that does not end.
    bool skipBlanks() {
        for (;;) {
            const auto passed = rest_.find_first_not_of(" \t\r\n\v\f");
            rest_.remove_prefix(std::min(passed, rest_.size()));
            if (rest_.starts_with("//")) {
                rest_.remove_prefix(std::min(rest_.find_first_of("\r\n"), rest_.size()));
            } else if (rest_.starts_with("/*")) {
                const std::size_t end = rest_.find("*/", 2);
                if (end == rest_.npos)
                    return false;
                rest_.remove_prefix(end + 2);
            } else {
                return true;
            }
        }
    }

    std::string_view rest_;
    std::size_t values_ = 0;
};

} // namespace

bool looksLikeXml(std::string_view bytes) {
    constexpr std::size_t enough = 4096;
    constexpr std::size_t longestTag = 10;
    constexpr std::string_view xmlBlanks = " \t\r\n";
    std::string text;
    for (char byte : bytes.substr(0, enough)) { // UTF-16 without its zero bytes reads as ASCII here
        const bool isBefore = text.empty() && xmlBlanks.find(byte) != xmlBlanks.npos;
        if (byte == '\0' || static_cast<unsigned char>(byte) >= 0x80 || isBefore)
            continue;
        text += byte;
        if (text.size() > longestTag)
            break;
    }
    if (text.starts_with("<?") || text.starts_with("<!"))
        return true;
    if (!text.starts_with('<'))
        return false;
    const std::string_view name = std::string_view(text).substr(
        1, text.find_first_not_of("abcdefghijklmnopqrstuvwxyz", 1) - 1);
    constexpr std::string_view names[] = {"plist", "dict", "array",   "string", "data",
                                          "date",  "real", "integer", "true",   "false"};
    return std::find(std::begin(names), std::end(names), name) != std::end(names);
}

std::optional<PropertyListNode> readTextPropertyList(std::string_view bytes) {
    auto text = utf8FromMarkedText(bytes);
    return text ? TextReader(*text).read() : std::nullopt;
}

} // namespace dubrix
