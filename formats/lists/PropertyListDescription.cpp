#include "formats/lists/PropertyListForms.h"
#include "formats/text/Decimal.h"
#include "formats/text/Unicode.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace dubrix {

namespace {

using Node = PropertyListNode;

template<class... Values>
std::string printed(const char* format, Values... values) {
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), format, values...);
    return text.data();
}

/// The fewest digits, from 15 up, that read back as the same number.
std::string shortestReal(double number) {
    std::string text;
    for (int digits : {15, 16, 17}) {
        text = formattedReal(number, digits);
        double again = 0;
        readDecimal(std::string_view(text).substr(number < 0 ? 1 : 0), again);
        if (again == std::abs(number))
            break;
    }
    return text;
}

bool isBareWord(std::string_view text) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [](char character) {
        return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
               (character >= '0' && character <= '9') || character == '_';
    });
}

std::string quotedIfNeeded(const std::string& text) {
    if (isBareWord(text))
        return text;
    std::string quoted = "\"";
    for (char16_t unit : utf16FromUtf8(repairedUtf8(text))) {
        if (unit == '"' || unit == '\\')
            quoted.append("\\") += static_cast<char>(unit);
        else if (unit == '\n')
            quoted += "\\n";
        else if (unit == '\t')
            quoted += "\\t";
        else if (unit < 0x20 || unit == 0x7F)
            quoted += printed("\\%03o", unsigned{unit});
        else if (unit > 0x7F)
            quoted += printed("\\U%04x", unsigned{unit});
        else
            quoted += static_cast<char>(unit);
    }
    return quoted + "\"";
}

std::string plain(const Node::Null&) {
    return "<null>";
}

std::string plain(bool flag) {
    return flag ? "1" : "0";
}

std::string plain(std::int64_t number) {
    return std::to_string(number);
}

std::string plain(std::uint64_t number) {
    return std::to_string(number);
}

std::string plain(double number) {
    return shortestReal(number);
}

std::string plain(const std::string& text) {
    return text;
}

std::string plain(const Node::Date& date) {
    const CalendarTime time = calendarTime(date.secondsSince2001);
    return printed("%04d-%02u-%02u %02u:%02u:%02u +0000", time.year, time.month, time.day,
                   time.hour, time.minute, time.second);
}

std::string plain(const Node::Uid& uid) {
    return std::to_string(uid.value);
}

std::string plain(const Node::Data& data) {
    constexpr std::size_t groupLength = 4;
    std::string text = "<";
    for (std::size_t index = 0; index < data.bytes.size(); ++index) {
        if (index != 0 && index % groupLength == 0)
            text += ' ';
        text += printed("%02x", unsigned{static_cast<unsigned char>(data.bytes[index])});
    }
    return text + ">";
}

std::string described(const Node& node, std::size_t level);

/// A container opens with its own indentation even behind "key = ", as the phone prints it.
std::string inside(const Node::Array& values, std::size_t level) {
    const std::string indent(4 * level, ' ');
    std::string text = indent + "(\n";
    for (const Node& value : values) {
        text += indent + "    " + described(value, level + 1);
        text += &value == &values.back() ? "\n" : ",\n";
    }
    return text + indent + ")";
}

std::string inside(const Node::Dictionary& entries, std::size_t level) {
    const std::string indent(4 * level, ' ');
    std::string text = indent + "{\n";
    for (const Node::Entry& entry : entries)
        text += indent + "    " + quotedIfNeeded(entry.key) + " = " +
                described(entry.value, level + 1) + ";\n";
    return text + indent + "}";
}

std::string inside(const Node::Data& data, std::size_t) {
    return plain(data);
}

template<class Scalar>
std::string inside(const Scalar& scalar, std::size_t) {
    return quotedIfNeeded(plain(scalar));
}

std::string described(const Node& node, std::size_t level) {
    return std::visit([level](const auto& value) { return inside(value, level); }, node.value);
}

struct Top {
    std::string operator()(const Node::Array& values) const { return inside(values, 0); }
    std::string operator()(const Node::Dictionary& entries) const { return inside(entries, 0); }
    template<class Scalar>
    std::string operator()(const Scalar& scalar) const {
        return plain(scalar);
    }
};

} // namespace

std::string describePropertyList(const PropertyListNode& node) {
    return std::visit(Top{}, node.value);
}

} // namespace dubrix
