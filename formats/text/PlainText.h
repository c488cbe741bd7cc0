#pragma once

#include <string>
#include <string_view>

namespace dubrix {

/// Whether `text` holds something that acts on the line it is shown in instead of standing there:
/// control characters (C0 and C1), the separators of lines and paragraphs, marks that change the
/// direction of writing. A byte that is no part of UTF-8 counts as the symbol of that number.
bool actsOnLine(std::string_view text);
/// The same of one symbol.
bool actsOnLine(char32_t symbol);

/// The text on one line and in one field of it: a blank in place of each such symbol.
std::string onOneLine(std::string_view text);

/// The text with its ASCII letters in lower case.
std::string lowerCase(std::string_view text);

} // namespace dubrix
