#include "fuzzers/lists/Lists.h"

#include "formats/lists/PropertyList.h"

#include <bit>
#include <limits>

namespace dubrix::fuzz {

namespace {

using Node = PropertyListNode;

const std::vector<std::string>& texts() {
    static const std::vector<std::string> all =
        wordsOf("|a|CF$UID|CFBundleIdentifier|two words|0x1F|-|1e400|<null>|\"quoted\\\"|"
                "tab\tline\nreturn\r|\x01\x7f|]]>&lt;|/* no comment */|caf\xc3\xa9|"
                "\xef\xbf\xbd\xef\xbf\xbf|\xf0\x9f\x8c\xbf|\xe2\x80\xae|xxxxxxxxxxxxxxx|" +
                std::string(300, 'y'));
    return all;
}

Node anyNumber(Random& random) {
    const std::uint64_t bits = troublesome(random);
    switch (below(4, random)) {
    case 0:
        return {std::bit_cast<double>(bits)};
    case 1:
        return {Node::Date{once(2, random) ? std::bit_cast<double>(bits)
                                           : static_cast<double>(bits % 300000000000)}};
    case 2:
        return {Node::Uid{bits & 0xFFFFFFFF}};
    default:
        if (bits > std::numeric_limits<std::int64_t>::max() && once(2, random))
            return {bits};
        return {static_cast<std::int64_t>(bits)};
    }
}

Node anyScalar(Random& random) {
    switch (below(6, random)) {
    case 0:
        return {Node::Null{}};
    case 1:
        return {once(2, random)};
    case 2:
        return {Node::Data{anyOf(texts(), random)}};
    case 3:
        return {anyOf(texts(), random)};
    default:
        return anyNumber(random);
    }
}

/// Adds to a container; a key that is there already stays as it is.
void add(Node& node, Node value, Random& random) {
    if (auto* values = node.as<Node::Array>()) {
        values->insert(values->begin() + static_cast<long>(below(values->size() + 1, random)),
                       std::move(value));
    } else if (auto* entries = node.as<Node::Dictionary>()) {
        std::string key = anyOf(texts(), random);
        for (const Node::Entry& entry : *entries)
            if (entry.key == key)
                return;
        entries->push_back({std::move(key), std::move(value)});
    }
}

/// A value of any type with a few levels below it.
Node anyTree(Random& random, int levels = 3) {
    if (levels == 0 || once(3, random))
        return anyScalar(random);
    Node node = once(2, random) ? Node{Node::Array{}} : Node{Node::Dictionary{}};
    for (std::size_t count = below(5, random); count > 0; --count)
        add(node, anyTree(random, levels - 1), random);
    return node;
}

void collect(Node& node, std::vector<Node*>& all) {
    all.push_back(&node);
    if (auto* values = node.as<Node::Array>())
        for (Node& value : *values)
            collect(value, all);
    if (auto* entries = node.as<Node::Dictionary>())
        for (Node::Entry& entry : *entries)
            collect(entry.value, all);
}

void requireRoundTrips(const PropertyListNode& value) {
    const std::string binary = writeBinaryPropertyList(value);
    const auto fromBinary = readBinaryPropertyList(binary);
    require(fromBinary && equal(*fromBinary, value), "the binary form is read as the same value");
    require(writeBinaryPropertyList(*fromBinary) == binary, "the binary form is written the same");

    const std::string text = describePropertyList(value);
    const std::string xml = writeXmlPropertyList(value);
    if (xml.size() <= maximumPropertyListBytes) {
        const auto fromXml = readXmlPropertyList(xml);
        require(fromXml && writeXmlPropertyList(*fromXml) == xml,
                "the XML form is written the same");
        // It has no null, and spells a UID as a dictionary.
        require(text.find("<null>") != text.npos || text.find("CF$UID") != text.npos ||
                    describePropertyList(*fromXml) == text,
                "the XML form keeps the value, its order and every digit");
    }

    if ((value.as<Node::Array>() || value.as<Node::Dictionary>()) &&
        text.size() <= maximumPropertyListBytes) {
        const auto fromText = readTextPropertyList(text);
        require(fromText && describePropertyList(*fromText) == text,
                "the description is read as what it shows");
    }
}

} // namespace

void requireSound(std::string_view bytes, const std::optional<PropertyListNode>& read) {
    if (read)
        requireRoundTrips(*read);
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

void changeTree(PropertyListNode& root, Random& random) {
    std::vector<Node*> all;
    collect(root, all);
    Node& place = *anyOf(all, random);
    Node other = *anyOf(all, random);
    if (auto* values = place.as<Node::Array>(); values && !values->empty() && once(4, random))
        values->pop_back();
    else if (once(3, random))
        place = once(2, random) ? std::move(other) : anyTree(random, 2);
    else if (once(2, random))
        add(place, once(2, random) ? std::move(other) : anyTree(random, 1), random);
    else {
        Node outer = once(2, random) ? Node{Node::Array{}} : Node{Node::Dictionary{}};
        std::swap(outer, place);
        add(place, std::move(outer), random);
    }
}

std::vector<PropertyListNode> sampleTrees() {
    Random random(2001);
    std::vector<Node> trees;
    Node every{Node::Dictionary{}};
    for (const std::string& text : texts())
        every.as<Node::Dictionary>()->push_back({text, {text}});
    trees.push_back(std::move(every));
    Node numbers{Node::Array{}};
    for (int count = 0; count < 40; ++count)
        numbers.as<Node::Array>()->push_back(anyScalar(random));
    trees.push_back(std::move(numbers));
    for (int count = 0; count < 12; ++count)
        trees.push_back(anyTree(random));
    return trees;
}

} // namespace dubrix::fuzz
