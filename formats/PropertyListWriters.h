#pragma once

#include "formats/PropertyListNode.h"

#include <string>

namespace dubrix {

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
