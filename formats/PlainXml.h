#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace dubrix {

/// An XML property list checked from the first byte to the last and written anew in its plainest
/// form: UTF-8, no document type, comments, instructions, attributes or blanks between elements,
/// only &amp; &lt; &gt; as references, and numbers and dates in one spelling that every parser
/// reads alike in every locale (a real has no decimal point: "15e-1").
///
/// Nothing for input that is not well formed, is no property list, has references to entities other
/// than the five of XML itself, or goes beyond the bounds of PropertyListNode.h.
std::optional<std::string> plainXml(std::string_view bytes);

/// The one spelling of each scalar in plain XML; nothing when `text` is no such value. Integers may
/// be hexadecimal ("0x1F") and lie in -2^63 to 2^64-1.
std::optional<std::string> plainInteger(std::string_view text);
std::optional<std::string> plainReal(std::string_view text);
std::optional<std::string> plainDate(std::string_view text);
std::optional<std::string> plainBase64(std::string_view text);

} // namespace dubrix
