#include "formats/lists/PropertyListForms.h"
#include "formats/lists/XmlScanner.h"
#include "formats/text/Unicode.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdio>

namespace dubrix {

namespace {

using Node = PropertyListNode;

constexpr double firstSecondOfYear1 = -63113904000;
constexpr double lastSecondOfYear9999 = 252423993599;

/// Text that the XML form cannot hold (a zero character, bytes that are not UTF-8) is mended, so
/// that the file as a whole stays readable.
std::string xmlText(std::string_view text) {
    return escapedXml(repairedUtf8(text));
}

std::string dateText(double secondsSince2001) {
    const CalendarTime time = calendarTime(secondsSince2001);
    std::array<char, 64> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02u-%02uT%02u:%02u:%02uZ", time.year, time.month,
                  time.day, time.hour, time.minute, time.second);
    return text.data();
}

class XmlWriter {
public:
    void write(const Node& node, std::size_t indent) {
        indent_ = indent;
        std::visit([this](const auto& value) { put(value); }, node.value);
    }
    std::string take() { return std::move(text_); }

private:
    void line(std::string_view content) { text_.append(indent_, '\t').append(content) += '\n'; }
    void element(std::string_view name, std::string_view content) {
        text_.append(indent_, '\t');
        text_.append("<").append(name).append(">").append(content);
        text_.append("</").append(name).append(">\n");
    }

    void put(const Node::Null&) { element("string", ""); }
    void put(bool flag) { line(flag ? "<true/>" : "<false/>"); }
    void put(std::int64_t number) { element("integer", std::to_string(number)); }
    void put(std::uint64_t number) { element("integer", std::to_string(number)); }
    void put(double number) { element("real", number == 0 ? zero(number) : formatted(number)); }
    void put(const std::string& text) { element("string", xmlText(text)); }
    void put(const Node::Date& date) { element("date", dateText(date.secondsSince2001)); }
    void put(const Node::Data& data);
    void put(const Node::Uid& uid);
    void put(const Node::Array& values);
    void put(const Node::Dictionary& entries);

    static std::string zero(double number) { return std::signbit(number) ? "-0.0" : "0.0"; }
    static std::string formatted(double number) { return formattedReal(number, 17); }

    std::string text_;
    std::size_t indent_ = 0;
};

/// Base 64 in lines that count the indentation as eight columns a tab, up to 76 columns.
void XmlWriter::put(const Node::Data& data) {
    constexpr std::string_view symbols =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    const std::string& bytes = data.bytes;
    const std::size_t width = 76 - 8 * std::min<std::size_t>(indent_, 8);
    std::string encoded;
    line("<data>");
    for (std::size_t start = 0; start < bytes.size(); start += 3) {
        auto byte = [&](std::size_t index) {
            return index < bytes.size() ? static_cast<unsigned char>(bytes[index]) : 0U;
        };
        unsigned group = byte(start) << 16 | byte(start + 1) << 8 | byte(start + 2);
        encoded += symbols[group >> 18];
        encoded += symbols[group >> 12 & 63];
        encoded += start + 1 < bytes.size() ? symbols[group >> 6 & 63] : '=';
        encoded += start + 2 < bytes.size() ? symbols[group & 63] : '=';
    }
    for (std::size_t start = 0; start < encoded.size(); start += width)
        line(std::string_view(encoded).substr(start, width));
    line("</data>");
}

void XmlWriter::put(const Node::Uid& uid) {
    line("<dict>");
    ++indent_;
    element("key", "CF$UID");
    element("integer", std::to_string(uid.value));
    --indent_;
    line("</dict>");
}

void XmlWriter::put(const Node::Array& values) {
    if (values.empty())
        return line("<array/>");
    const std::size_t indent = indent_;
    line("<array>");
    for (const Node& value : values)
        write(value, indent + 1);
    indent_ = indent;
    line("</array>");
}

void XmlWriter::put(const Node::Dictionary& entries) {
    const std::size_t indent = indent_;
    auto isNull = [](const Node::Entry& entry) { return entry.value.as<Node::Null>() != nullptr; };
    if (std::all_of(entries.begin(), entries.end(), isNull))
        return line("<dict/>");
    line("<dict>");
    for (const Node::Entry& entry : entries) {
        if (isNull(entry))
            continue;
        indent_ = indent + 1;
        element("key", xmlText(entry.key));
        write(entry.value, indent + 1);
    }
    indent_ = indent;
    line("</dict>");
}

} // namespace

std::string formattedReal(double number, int digits) {
    if (std::isnan(number))
        return "nan";
    if (std::isinf(number))
        return number < 0 ? "-infinity" : "+infinity";
    std::array<char, 64> text{};
    auto result = std::to_chars(text.data(), text.data() + text.size(), number,
                                std::chars_format::general, digits);
    return {text.data(), result.ptr};
}

CalendarTime calendarTime(double secondsSince2001) {
    using namespace std::chrono;
    constexpr sys_days epoch = year{2001} / January / 1;
    const double held =
        std::isnan(secondsSince2001)
            ? 0
            : std::clamp(secondsSince2001, firstSecondOfYear1, lastSecondOfYear9999);
    auto instant = sys_seconds{epoch} + seconds{static_cast<long long>(std::floor(held))};
    auto midnight = floor<days>(instant);
    year_month_day date{midnight};
    auto sinceMidnight = static_cast<unsigned>((instant - midnight).count());
    return {static_cast<int>(date.year()),     static_cast<unsigned>(date.month()),
            static_cast<unsigned>(date.day()), sinceMidnight / 3600,
            sinceMidnight / 60 % 60,           sinceMidnight % 60};
}

std::string writeXmlPropertyList(const PropertyListNode& node) {
    XmlWriter writer;
    writer.write(node, 0);
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
           "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
           "<plist version=\"1.0\">\n" +
           writer.take() + "</plist>\n";
}

} // namespace dubrix
