#pragma once

#include "formats/lists/PropertyListNode.h"

#include <optional>
#include <string>
#include <string_view>

namespace dubrix {

// The scalars of an XML property list from the text of their elements, blanks around it left out,
// in any locale; nothing when the text is no such value.

/// Decimal or hexadecimal ("0x1F"), -2^63 to 2^64-1.
std::optional<PropertyListNode> xmlInteger(std::string_view text);

/// Also "nan", "inf" and "infinity" in any case; 0 for what is too small for a double, nothing for
/// what is too large.
std::optional<double> xmlReal(std::string_view text);

/// "2001-01-01T00:00:00Z", years 1 to 9999, as seconds since that moment. A day that its month
/// does not have counts on into the next one.
std::optional<double> xmlDate(std::string_view text);

/// Base64, with or without padding and with blanks anywhere.
std::optional<std::string> xmlData(std::string_view text);

} // namespace dubrix
