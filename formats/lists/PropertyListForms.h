#pragma once

#include "formats/lists/PropertyListNode.h"

#include <optional>
#include <string>
#include <string_view>

namespace dubrix {

/// Whether `bytes` begin, after a byte order mark and blanks, like markup: "<" and then "?", "!" or
/// a letter that opens a tag. "<" also opens the data of the old-style text form.
bool looksLikeXml(std::string_view bytes);

/// The value of an XML document; nothing unless it is sound from its start to the end of the root
/// element. What follows is not looked at, as by the phone. UTF-8, UTF-16 and UTF-32 (by their byte
/// order marks or first characters) and older encodings that the document declares; with any other
/// declared encoding, bytes that are no UTF-8 become U+FFFD. A dictionary with the one key "CF$UID"
/// and an integer from 0 to 2^32-1 is a UID. Dates have years 1 to 9999 and whole seconds.
std::optional<PropertyListNode> readXmlPropertyList(std::string_view bytes);

/// The value of a binary property list, version "00"; nothing unless every object reachable from
/// the top one is sound. Sets are not read.
std::optional<PropertyListNode> readBinaryPropertyList(std::string_view bytes);

/// The value of an old-style text: a dictionary in braces, the same without braces (a string
/// table), an array, data or a single string. Every scalar but data is a string.
std::optional<PropertyListNode> readTextPropertyList(std::string_view bytes);

/// The XML form. It has no null: a null is left out of a dictionary and is an empty string
/// elsewhere. It has whole seconds and years 1 to 9999: dates are rounded down and held in there.
std::string writeXmlPropertyList(const PropertyListNode& node);

/// The binary form, version "00"; equal scalars are stored once.
std::string writeBinaryPropertyList(const PropertyListNode& node);

/// The value as text for a reader: see PropertyList::description.
std::string describePropertyList(const PropertyListNode& node);

/// `number` in the given count of significant digits, as C's "%.*g" in any locale; "nan",
/// "+infinity" and "-infinity" for what is no number.
std::string formattedReal(double number, int digits);

/// The UTC calendar date and time of a date value, in whole seconds (rounded down); what lies
/// outside the years 1 to 9999 is held at their ends, and no number is 2001-01-01T00:00:00Z.
struct CalendarTime {
    int year;
    unsigned month, day, hour, minute, second;
};
CalendarTime calendarTime(double secondsSince2001);

} // namespace dubrix
