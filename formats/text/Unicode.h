#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace dubrix {

/// Whether `text` is UTF-8: no overlong forms, no surrogates, nothing above U+10FFFF.
bool isUtf8(std::string_view text);

/// The scalar value at `index`, which moves past it; nothing, and `index` one byte further, where
/// the bytes are not UTF-8.
std::optional<char32_t> takeScalar(std::string_view text, std::size_t& index);

/// Appends the UTF-8 form of a Unicode scalar value; false, and nothing appended, for other
/// numbers.
bool appendUtf8(std::string& text, char32_t scalar);

/// `text` with U+FFFD for every zero character and every byte that is not part of UTF-8.
std::string repairedUtf8(std::string_view text);

enum class ByteOrder { Little, Big };

/// UTF-16 as UTF-8; nothing when bytes are left over or a surrogate stands alone.
std::optional<std::string> utf8FromUtf16(std::string_view bytes, ByteOrder order);

/// ISO-8859-1 as UTF-8.
std::string utf8FromLatin1(std::string_view bytes);

/// The text of a file as UTF-8 without byte order mark: UTF-16 where a mark says so, else UTF-8;
/// nothing when it is not sound.
std::optional<std::string> utf8FromMarkedText(std::string_view bytes);

/// The UTF-16 units of sound UTF-8.
std::u16string utf16FromUtf8(std::string_view utf8);

} // namespace dubrix
