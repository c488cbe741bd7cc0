#include "fuzzers/lists/ListProperties.h"

#include "formats/lists/PropertyList.h"
#include "formats/lists/PropertyListForms.h"

#include <cmath>
#include <limits>

namespace dubrix::fuzz {

namespace {

using Node = PropertyListNode;

/// A value as it is to come back from a form that has fewer types: `Form` says what becomes of a
/// scalar, and of a dictionary once its values are converted.
template<class Form>
Node converted(const Node& node) {
    if (const auto* values = node.as<Node::Array>()) {
        Node::Array result;
        for (const Node& value : *values)
            result.push_back(converted<Form>(value));
        return {std::move(result)};
    }
    if (const auto* entries = node.as<Node::Dictionary>()) {
        Node::Dictionary result;
        for (const Node::Entry& entry : *entries)
            if (!Form::drops(entry.value))
                result.push_back({entry.key, converted<Form>(entry.value)});
        return Form::dictionary(std::move(result));
    }
    return Form::scalar(node);
}

struct XmlForm {
    static bool drops(const Node& value) { return value.as<Node::Null>() != nullptr; }

    /// A UID is spelt as a dictionary.
    static Node dictionary(Node::Dictionary entries) {
        const auto* number = entries.size() == 1 && entries[0].key == "CF$UID"
                                 ? entries[0].value.as<std::int64_t>()
                                 : nullptr;
        if (number != nullptr && *number >= 0 &&
            *number <= std::numeric_limits<std::uint32_t>::max())
            return {Node::Uid{static_cast<std::uint64_t>(*number)}};
        return {std::move(entries)};
    }

    static Node scalar(const Node& node) {
        if (drops(node))
            return {std::string()};
        if (const auto* number = node.as<double>(); number != nullptr && std::isnan(*number))
            return {std::numeric_limits<double>::quiet_NaN()};
        const auto* date = node.as<Node::Date>();
        if (date == nullptr)
            return node;
        constexpr double year1 = -63113904000, year9999 = 252423993599;
        const double held = std::min(std::max(date->secondsSince2001, year1), year9999);
        // Zero is added for dates of negative zero, which a calendar does not have.
        return {Node::Date{std::isnan(date->secondsSince2001) ? 0 : std::floor(held) + 0.0}};
    }
};

struct TextForm {
    static bool drops(const Node&) { return false; }
    static Node dictionary(Node::Dictionary entries) { return {std::move(entries)}; }
    static Node scalar(const Node& node) {
        return node.as<Node::Data>() != nullptr ? node : Node{describePropertyList(node)};
    }
};

} // namespace

void requireRoundTrips(const PropertyListNode& value) {
    const std::string binary = writeBinaryPropertyList(value);
    const auto fromBinary = readBinaryPropertyList(binary);
    require(fromBinary && equal(*fromBinary, value), "the binary form is read as the same value");
    require(writeBinaryPropertyList(*fromBinary) == binary, "the binary form is written the same");

    const std::string xml = writeXmlPropertyList(value);
    if (xml.size() <= maximumPropertyListBytes) {
        const auto fromXml = readXmlPropertyList(xml);
        const Node expected = converted<XmlForm>(value);
        require(fromXml && equal(*fromXml, expected), "the XML form is read as the same value");
        require(writeBinaryPropertyList(*fromXml) == writeBinaryPropertyList(expected),
                "the XML form keeps the order and every bit");
        require(writeXmlPropertyList(*fromXml) == xml, "the XML form is written the same");
    }

    const std::string text = describePropertyList(value);
    const bool isContainer =
        value.as<Node::Array>() != nullptr || value.as<Node::Dictionary>() != nullptr;
    if (isContainer && text.size() <= maximumPropertyListBytes) {
        const auto fromText = readTextPropertyList(text);
        require(fromText && equal(*fromText, converted<TextForm>(value)),
                "the description is read as the same texts");
    }
}

void requireListIsUsable(std::string_view bytes) {
    const auto list = PropertyList::parse(bytes);
    if (!list)
        return;
    PropertyList copy = *list;
    require(copy == *list, "a copy is equal");
    // Asked for their effect on the sanitizers: any answer will do.
    (void)list->booleanValue();
    (void)list->floatValue();
    for (const std::string& key : list->keys()) {
        const auto value = list->valueForKey(key);
        require(value.has_value(), "every key has its value");
        copy.removeValueForKey(key);
        require(!copy.hasKey(key), "a removed key is gone");
        copy.setValueForKey(key, *value);
    }
    require(copy == *list, "values put back make the same dictionary");
    for (std::size_t index = 0; index < list->count(); ++index)
        require(list->valueAt(index).has_value(), "every index has its value");
}

} // namespace dubrix::fuzz
