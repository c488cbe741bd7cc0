#include "fuzzers/lists/Lists.h"

#include "formats/lists/PropertyList.h"

#include <cmath>
#include <limits>

namespace dubrix::fuzz {

namespace {

using Node = PropertyListNode;

/// The value as it is to come back from its XML form, which has fewer types.
Node asInXml(const Node& node) {
    if (const auto* values = node.as<Node::Array>()) {
        Node::Array result;
        for (const Node& value : *values)
            result.push_back(asInXml(value));
        return {std::move(result)};
    }
    if (const auto* entries = node.as<Node::Dictionary>()) {
        Node::Dictionary result;
        for (const Node::Entry& entry : *entries)
            if (!entry.value.as<Node::Null>())
                result.push_back({entry.key, asInXml(entry.value)});
        // A UID is spelt as a dictionary.
        const bool isAlone = result.size() == 1 && result[0].key == "CF$UID";
        const auto* number = isAlone ? result[0].value.as<std::int64_t>() : nullptr;
        if (number && *number >= 0 && *number <= std::numeric_limits<std::uint32_t>::max())
            return {Node::Uid{static_cast<std::uint64_t>(*number)}};
        return {std::move(result)};
    }
    if (node.as<Node::Null>())
        return {std::string()};
    if (const auto* real = node.as<double>(); real && std::isnan(*real))
        return {std::numeric_limits<double>::quiet_NaN()};
    if (const auto* date = node.as<Node::Date>()) {
        constexpr double year1 = -63113904000, year9999 = 252423993599;
        const double held = std::min(std::max(date->secondsSince2001, year1), year9999);
        // Zero is added for dates of negative zero, which a calendar does not have.
        return {Node::Date{std::isnan(date->secondsSince2001) ? 0 : std::floor(held) + 0.0}};
    }
    return node;
}

} // namespace

void requireRoundTrips(const PropertyListNode& value) {
    const std::string binary = writeBinaryPropertyList(value);
    const auto fromBinary = readBinaryPropertyList(binary);
    require(fromBinary && equal(*fromBinary, value), "the binary form is read as the same value");
    require(writeBinaryPropertyList(*fromBinary) == binary, "the binary form is written the same");

    const std::string xml = writeXmlPropertyList(value);
    if (xml.size() <= maximumPropertyListBytes) {
        const auto fromXml = readXmlPropertyList(xml);
        require(fromXml &&
                    writeBinaryPropertyList(*fromXml) == writeBinaryPropertyList(asInXml(value)),
                "the XML form keeps the value, its order and every bit");
        require(writeXmlPropertyList(*fromXml) == xml, "the XML form is written the same");
    }

    const std::string text = describePropertyList(value);
    if ((value.as<Node::Array>() || value.as<Node::Dictionary>()) &&
        text.size() <= maximumPropertyListBytes) {
        const auto fromText = readTextPropertyList(text);
        require(fromText && describePropertyList(*fromText) == text,
                "the description is read as what it shows");
    }
}

void requireListIsUsable(std::string_view bytes) {
    const auto list = PropertyList::parse(bytes);
    if (!list)
        return;
    // Asked for their effect on the sanitizers: any answer will do.
    (void)list->booleanValue();
    (void)list->floatValue();
    PropertyList copy = *list;
    for (const std::string& key : list->keys()) {
        const auto value = list->valueForKey(key);
        copy.removeValueForKey(key);
        require(value && !copy.hasKey(key), "every key has its value until it is removed");
        copy.setValueForKey(key, *value);
    }
    require(copy == *list, "values put back make the same dictionary");
}

} // namespace dubrix::fuzz
