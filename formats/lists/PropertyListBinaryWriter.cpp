#include "formats/lists/PropertyListForms.h"
#include "formats/text/Unicode.h"

#include <bit>
#include <limits>

namespace dubrix {

namespace {

using Node = PropertyListNode;

std::string bigEndian(std::uint64_t number, std::size_t width) {
    std::string bytes(width, '\0');
    for (std::size_t index = width; index-- > 0; number >>= 8)
        bytes[index] = static_cast<char>(number & 0xFF);
    return bytes;
}

/// The least of 1, 2, 4 and 8 bytes that hold `number`.
std::size_t widthFor(std::uint64_t number) {
    if (number <= 0xFF)
        return 1;
    if (number <= 0xFFFF)
        return 2;
    return number <= 0xFFFFFFFF ? 4 : 8;
}

std::string marked(unsigned marker, std::string_view content) {
    return std::string(1, static_cast<char>(marker)).append(content);
}

std::string encoded(std::int64_t number) {
    const auto bits = static_cast<std::uint64_t>(number);
    const std::size_t width = widthFor(bits);
    return marked(0x10U | static_cast<unsigned>(std::countr_zero(width)), bigEndian(bits, width));
}

/// The marker of a text, data or container object, with the length in it or behind it.
std::string lengthHeader(unsigned kind, std::size_t length) {
    if (length < 0x0F)
        return marked(kind | static_cast<unsigned>(length), {});
    return marked(kind | 0x0FU, encoded(static_cast<std::int64_t>(length)));
}

std::string encoded(const Node::Null&) {
    return marked(0x00, {});
}

std::string encoded(bool flag) {
    return marked(flag ? 0x09 : 0x08, {});
}

/// Above INT64_MAX: sixteen bytes, since eight would read as a negative number.
std::string encoded(std::uint64_t number) {
    return marked(0x14, bigEndian(0, 8) + bigEndian(number, 8));
}

std::string encoded(double number) {
    return marked(0x23, bigEndian(std::bit_cast<std::uint64_t>(number), 8));
}

std::string encoded(const Node::Date& date) {
    return marked(0x33, bigEndian(std::bit_cast<std::uint64_t>(date.secondsSince2001), 8));
}

std::string encoded(const Node::Uid& uid) {
    const std::size_t width = widthFor(uid.value);
    return marked(0x80U | static_cast<unsigned>(width - 1), bigEndian(uid.value, width));
}

std::string encoded(const Node::Data& data) {
    return lengthHeader(0x40, data.bytes.size()) + data.bytes;
}

std::string encoded(const std::string& text) {
    const std::u16string units = utf16FromUtf8(repairedUtf8(text));
    std::string bytes;
    bool isAscii = true;
    for (char16_t unit : units)
        isAscii = isAscii && unit < 0x80;
    for (char16_t unit : units)
        bytes += bigEndian(unit, isAscii ? 1 : 2);
    return lengthHeader(isAscii ? 0x50 : 0x60, units.size()) + bytes;
}

class BinaryWriter {
public:
    std::string write(const Node& root) {
        add(root);
        const std::size_t referenceWidth = widthFor(objects_.size());
        std::string bytes = "bplist00";
        std::vector<std::size_t> offsets;
        for (const Object& object : objects_) {
            offsets.push_back(bytes.size());
            bytes += object.head;
            for (std::size_t reference : object.references)
                bytes += bigEndian(reference, referenceWidth);
        }
        const std::size_t table = bytes.size();
        const std::size_t offsetWidth = widthFor(table);
        for (std::size_t offset : offsets)
            bytes += bigEndian(offset, offsetWidth);
        constexpr std::size_t unusedTrailerBytes = 6;
        bytes.append(unusedTrailerBytes, '\0');
        bytes += bigEndian(offsetWidth, 1) + bigEndian(referenceWidth, 1);
        return bytes + bigEndian(objects_.size(), 8) + bigEndian(0, 8) + bigEndian(table, 8);
    }

private:
    struct Object {
        std::string head;
        std::vector<std::size_t> references;
    };

    std::size_t add(const Node& node) {
        return std::visit([this](const auto& value) { return put(value); }, node.value);
    }

    template<class Scalar>
    std::size_t put(const Scalar& scalar) {
        std::string head = encoded(scalar);
        auto [place, isNew] = scalars_.try_emplace(head, objects_.size());
        if (isNew)
            objects_.push_back({std::move(head), {}});
        return place->second;
    }

    std::size_t put(const Node::Array& values) {
        const std::size_t index = objects_.size();
        objects_.push_back({lengthHeader(0xA0, values.size()), {}});
        std::vector<std::size_t> references;
        for (const Node& value : values)
            references.push_back(add(value));
        objects_[index].references = std::move(references);
        return index;
    }

    std::size_t put(const Node::Dictionary& entries) {
        const std::size_t index = objects_.size();
        objects_.push_back({lengthHeader(0xD0, entries.size()), {}});
        std::vector<std::size_t> references;
        for (const Node::Entry& entry : entries)
            references.push_back(put(entry.key));
        for (const Node::Entry& entry : entries)
            references.push_back(add(entry.value));
        objects_[index].references = std::move(references);
        return index;
    }

    std::vector<Object> objects_;
    std::unordered_map<std::string, std::size_t> scalars_;
};

} // namespace

std::string writeBinaryPropertyList(const PropertyListNode& node) {
    return BinaryWriter().write(node);
}

} // namespace dubrix
