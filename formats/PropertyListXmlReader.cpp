#include "formats/PlainXml.h"
#include "formats/PropertyListReaders.h"

#include <plist/plist.h>

#include <algorithm>
#include <bit>
#include <cstdlib>
#include <limits>
#include <memory>

namespace dubrix {

namespace {

using Node = PropertyListNode;

struct FreeValue {
    void operator()(void* value) const { plist_free(value); }
};
struct FreeMemory {
    void operator()(void* memory) const { std::free(memory); }
};
using Value = std::unique_ptr<void, FreeValue>;
using Memory = std::unique_ptr<void, FreeMemory>;

/// The scalar's object, marker byte first, in the library's own binary form. Only there are the
/// sign of an integer and all digits of a date to be seen.
std::string binaryObject(plist_t scalar) {
    constexpr std::size_t headerLength = 8;
    char* bytes = nullptr;
    std::uint32_t length = 0;
    plist_to_bin(scalar, &bytes, &length);
    Memory owner(bytes);
    return length > headerLength ? std::string(bytes + headerLength, length - headerLength) : "";
}

double secondsSince2001(plist_t date) {
    std::uint64_t bits = 0;
    const std::string object = binaryObject(date);
    for (char byte : object.substr(std::min<std::size_t>(1, object.size()), sizeof bits))
        bits = bits << 8 | static_cast<unsigned char>(byte);
    return std::bit_cast<double>(bits);
}

std::optional<Node> copyOf(plist_t value);

Node boolean(plist_t value) {
    std::uint8_t flag = 0;
    plist_get_bool_val(value, &flag);
    return {flag != 0};
}

/// An unsigned number above INT64_MAX takes 16 bytes in the binary form, a negative one 8.
bool isUnsigned(plist_t value) {
    return binaryObject(value).starts_with('\x14');
}

Node integer(plist_t value) {
    std::uint64_t number = 0;
    plist_get_uint_val(value, &number);
    if (number > std::numeric_limits<std::int64_t>::max() && isUnsigned(value))
        return {number};
    return {static_cast<std::int64_t>(number)};
}

std::optional<Node> array(plist_t value) {
    Node::Array values;
    plist_array_iter iterator = nullptr;
    plist_array_new_iter(value, &iterator);
    Memory owner(iterator);
    for (;;) {
        plist_t item = nullptr;
        plist_array_next_item(value, iterator, &item);
        if (!item)
            return Node{std::move(values)};
        auto copy = copyOf(item);
        if (!copy)
            return std::nullopt;
        values.push_back(std::move(*copy));
    }
}

Node asUid(Node dictionary) {
    const auto& entries = *dictionary.as<Node::Dictionary>();
    if (entries.size() != 1 || entries[0].key != "CF$UID")
        return dictionary;
    const auto* number = entries[0].value.as<std::int64_t>();
    if (!number || *number < 0 || *number > std::numeric_limits<std::uint32_t>::max())
        return dictionary;
    return {Node::Uid{static_cast<std::uint64_t>(*number)}};
}

std::optional<Node> dictionary(plist_t value) {
    PropertyListDictionaryBuilder entries;
    plist_dict_iter iterator = nullptr;
    plist_dict_new_iter(value, &iterator);
    Memory owner(iterator);
    for (;;) {
        char* key = nullptr;
        plist_t item = nullptr;
        plist_dict_next_item(value, iterator, &key, &item);
        Memory keyOwner(key);
        if (!item || !key)
            return asUid(entries.take());
        auto copy = copyOf(item);
        if (!copy)
            return std::nullopt;
        entries.put(key, std::move(*copy));
    }
}

/// The library's tree as ours.
std::optional<Node> copyOf(plist_t value) {
    switch (plist_get_node_type(value)) {
    case PLIST_BOOLEAN:
        return boolean(value);
    case PLIST_UINT:
        return integer(value);
    case PLIST_REAL: {
        double number = 0;
        plist_get_real_val(value, &number);
        return Node{number};
    }
    case PLIST_DATE:
        return Node{Node::Date{secondsSince2001(value)}};
    case PLIST_UID: {
        std::uint64_t number = 0;
        plist_get_uid_val(value, &number);
        return Node{Node::Uid{number}};
    }
    case PLIST_STRING: {
        std::uint64_t length = 0;
        const char* text = plist_get_string_ptr(value, &length);
        return Node{text ? std::string(text, length) : std::string()};
    }
    case PLIST_DATA: {
        std::uint64_t length = 0;
        const char* bytes = plist_get_data_ptr(value, &length);
        return Node{Node::Data{bytes ? std::string(bytes, length) : std::string()}};
    }
    case PLIST_ARRAY:
        return array(value);
    case PLIST_DICT:
        return dictionary(value);
    default:
        return std::nullopt;
    }
}

} // namespace

std::optional<PropertyListNode> readXmlPropertyList(std::string_view bytes) {
    auto plain = plainXml(bytes);
    if (!plain || plain->size() > std::numeric_limits<std::uint32_t>::max())
        return std::nullopt;
    plist_t value = nullptr;
    plist_from_xml(plain->data(), static_cast<std::uint32_t>(plain->size()), &value);
    Value owner(value);
    return value ? copyOf(value) : std::nullopt;
}

} // namespace dubrix
