#include "formats/text/PlainText.h"

#include "formats/text/Unicode.h"

namespace dubrix {

namespace {

bool isControl(char32_t symbol) {
    return symbol < 0x20 || (symbol >= 0x7f && symbol < 0xa0);
}

bool separatesLines(char32_t symbol) {
    return symbol == 0x2028 || symbol == 0x2029;
}

bool changesDirection(char32_t symbol) {
    return symbol == 0x061c || symbol == 0x200e || symbol == 0x200f ||
           (symbol >= 0x202a && symbol <= 0x202e) || (symbol >= 0x2066 && symbol <= 0x2069);
}

/// Moves `index` past the symbol there, of which it tells whether it acts on the line.
bool takeActing(std::string_view text, std::size_t& index) {
    const auto byte = static_cast<unsigned char>(text[index]);
    const char32_t symbol = takeScalar(text, index).value_or(byte);
    return actsOnLine(symbol);
}

} // namespace

bool actsOnLine(char32_t symbol) {
    return isControl(symbol) || separatesLines(symbol) || changesDirection(symbol);
}

bool actsOnLine(std::string_view text) {
    for (std::size_t index = 0; index < text.size();)
        if (takeActing(text, index))
            return true;
    return false;
}

std::string onOneLine(std::string_view text) {
    std::string line;
    for (std::size_t index = 0; index < text.size();) {
        const std::size_t start = index;
        if (takeActing(text, index))
            line += ' ';
        else
            line.append(text, start, index - start);
    }
    return line;
}

std::string lowerCase(std::string_view text) {
    std::string result(text);
    for (char& letter : result)
        if (letter >= 'A' && letter <= 'Z')
            letter = static_cast<char>(letter - 'A' + 'a');
    return result;
}

} // namespace dubrix
