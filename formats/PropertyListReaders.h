#pragma once

#include "formats/PropertyListNode.h"

#include <optional>
#include <string_view>

namespace dubrix {

/// Whether `bytes` begin, after a byte order mark and blanks, like markup: "<" and then "?", "!" or
/// a letter that opens a tag. "<" also opens the data of the old-style text form.
bool looksLikeXml(std::string_view bytes);

/// The value of an XML document; nothing unless the whole document is sound. UTF-8, UTF-16 (by its
/// byte order mark), ISO-8859-1 and US-ASCII. A dictionary with the one key "CF$UID" and an
/// integer from 0 to 2^32-1 is a UID. Dates have years 1 to 9999 and whole seconds.
std::optional<PropertyListNode> readXmlPropertyList(std::string_view bytes);

/// The value of a binary property list, version "00"; nothing unless every object reachable from
/// the top one is sound. Sets are not read.
std::optional<PropertyListNode> readBinaryPropertyList(std::string_view bytes);

/// The value of an old-style text: a dictionary in braces, the same without braces (a string
/// table), an array, data or a single string. Every scalar but data is a string.
std::optional<PropertyListNode> readTextPropertyList(std::string_view bytes);

} // namespace dubrix
