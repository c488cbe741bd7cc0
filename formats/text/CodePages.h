#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace dubrix {

/// Text in one of the encodings that were common before UTF-8, by its registered name in lower
/// case, or in UTF-32, as UTF-8. Nothing for other encodings, for bytes that are not in the
/// encoding, and where the system does not have it.
std::optional<std::string> utf8FromCodePage(std::string_view bytes, const std::string& encoding);

/// The Unicode scalar value of a byte in the NEXTSTEP character set, in which old-style texts count
/// their octal escapes (mapping: the Unicode consortium's NEXTSTEP.TXT). `byte` is at most 0xFF;
/// U+FFFD for the two that have no character.
char32_t scalarFromNextStep(unsigned byte);

} // namespace dubrix
