#pragma once

#include <string>

namespace dubrix {

/// The Unicode scalar value of a byte in the NEXTSTEP character set, in which old-style texts count
/// their octal escapes (mapping: the Unicode consortium's NEXTSTEP.TXT). `byte` is at most 0xFF;
/// U+FFFD for the two that have no character.
char32_t scalarFromNextStep(unsigned byte);

} // namespace dubrix
