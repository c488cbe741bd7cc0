#include "formats/lists/PropertyList.h"

#include "formats/lists/PropertyListForms.h"
#include "formats/lists/PropertyListNode.h"
#include "formats/text/Decimal.h"

#include <algorithm>
#include <limits>

namespace dubrix {

struct PropertyList::Node {
    PropertyListNode tree;
};

namespace {

constexpr std::string_view blanks = " \t\n\r\v\f";

std::string_view withoutLeading(std::string_view text, std::string_view characters) {
    return text.substr(std::min(text.find_first_not_of(characters), text.size()));
}

bool beginsTrue(std::string_view text) {
    text = withoutLeading(text, blanks);
    if (text.starts_with('+') || text.starts_with('-'))
        text.remove_prefix(1);
    text = withoutLeading(text, "0");
    return !text.empty() && std::string_view("YyTt123456789").find(text[0]) != text.npos;
}

/// The number that `text` begins with, 0 if none, independent of the locale.
float leadingNumber(std::string_view text) {
    text = withoutLeading(text, blanks);
    const float sign = text.starts_with('-') ? -1.0F : 1.0F;
    text.remove_prefix(text.starts_with('-') || text.starts_with('+') ? 1 : 0);
    if (text.find_first_of("0123456789.") != 0)
        return 0;
    double number = 0;
    if (readDecimal(text, number).ec == std::errc::result_out_of_range)
        return sign * std::numeric_limits<float>::infinity();
    return sign * static_cast<float>(number);
}

const PropertyListNode* find(const PropertyListNode& tree, std::string_view key) {
    if (const auto* entries = tree.as<PropertyListNode::Dictionary>())
        for (const auto& entry : *entries)
            if (entry.key == key)
                return &entry.value;
    return nullptr;
}

} // namespace

std::optional<PropertyList> PropertyList::parse(std::string_view bytes) {
    std::optional<PropertyListNode> tree;
    if (bytes.size() > maximumPropertyListBytes)
        return std::nullopt;
    if (bytes.starts_with("bplist"))
        tree = readBinaryPropertyList(bytes);
    else if (looksLikeXml(bytes))
        tree = readXmlPropertyList(bytes);
    else
        tree = readTextPropertyList(bytes);
    if (!tree)
        return std::nullopt;
    return PropertyList(std::make_unique<Node>(Node{std::move(*tree)}));
}

PropertyList PropertyList::dictionary() {
    return PropertyList(std::make_unique<Node>(Node{{PropertyListNode::Dictionary{}}}));
}

PropertyList PropertyList::array() {
    return PropertyList(std::make_unique<Node>(Node{{PropertyListNode::Array{}}}));
}

PropertyList PropertyList::string(std::string_view utf8) {
    return PropertyList(std::make_unique<Node>(Node{{std::string(utf8)}}));
}

PropertyList PropertyList::boolean(bool value) {
    return PropertyList(std::make_unique<Node>(Node{{value}}));
}

PropertyList PropertyList::integer(std::int64_t value) {
    return PropertyList(std::make_unique<Node>(Node{{value}}));
}

PropertyList PropertyList::real(double value) {
    return PropertyList(std::make_unique<Node>(Node{{value}}));
}

PropertyList PropertyList::data(std::string_view bytes) {
    return PropertyList(std::make_unique<Node>(Node{{PropertyListNode::Data{std::string(bytes)}}}));
}

PropertyList::PropertyList(std::unique_ptr<Node> node) : node_(std::move(node)) {}
PropertyList::PropertyList(const PropertyList& other)
    : node_(other.node_ ? std::make_unique<Node>(*other.node_) : nullptr) {}
PropertyList::PropertyList(PropertyList&& other) noexcept = default;
PropertyList& PropertyList::operator=(const PropertyList& other) {
    node_ = other.node_ ? std::make_unique<Node>(*other.node_) : nullptr;
    return *this;
}
PropertyList& PropertyList::operator=(PropertyList&& other) noexcept = default;
PropertyList::~PropertyList() = default;

bool PropertyList::operator==(const PropertyList& other) const {
    return equal(node_->tree, other.node_->tree);
}

PropertyList::Type PropertyList::type() const {
    struct Naming {
        Type operator()(const PropertyListNode::Null&) const { return Type::Null; }
        Type operator()(bool) const { return Type::Boolean; }
        Type operator()(std::int64_t) const { return Type::Integer; }
        Type operator()(std::uint64_t) const { return Type::Integer; }
        Type operator()(double) const { return Type::Real; }
        Type operator()(const std::string&) const { return Type::String; }
        Type operator()(const PropertyListNode::Data&) const { return Type::Data; }
        Type operator()(const PropertyListNode::Date&) const { return Type::Date; }
        Type operator()(const PropertyListNode::Uid&) const { return Type::Uid; }
        Type operator()(const PropertyListNode::Array&) const { return Type::Array; }
        Type operator()(const PropertyListNode::Dictionary&) const { return Type::Dictionary; }
    };
    return std::visit(Naming{}, node_->tree.value);
}

std::optional<std::string> PropertyList::stringValue() const {
    const auto* text = node_->tree.as<std::string>();
    return text ? std::optional(*text) : std::nullopt;
}

bool PropertyList::booleanValue() const {
    const PropertyListNode& tree = node_->tree;
    if (const auto* flag = tree.as<bool>())
        return *flag;
    if (const auto* number = tree.as<std::int64_t>())
        return *number != 0;
    if (const auto* number = tree.as<double>())
        return *number != 0;
    if (const auto* text = tree.as<std::string>())
        return beginsTrue(*text);
    return tree.as<std::uint64_t>() != nullptr; // only held for numbers above INT64_MAX
}

float PropertyList::floatValue() const {
    const PropertyListNode& tree = node_->tree;
    if (const auto* flag = tree.as<bool>())
        return *flag ? 1.0F : 0.0F;
    if (const auto* number = tree.as<std::int64_t>())
        return static_cast<float>(*number);
    if (const auto* number = tree.as<std::uint64_t>())
        return static_cast<float>(*number);
    if (const auto* number = tree.as<double>())
        return static_cast<float>(*number);
    if (const auto* text = tree.as<std::string>())
        return leadingNumber(*text);
    return 0;
}

std::vector<std::string> PropertyList::keys() const {
    std::vector<std::string> keys;
    if (const auto* entries = node_->tree.as<PropertyListNode::Dictionary>())
        for (const auto& entry : *entries)
            keys.push_back(entry.key);
    return keys;
}

bool PropertyList::hasKey(std::string_view key) const {
    return find(node_->tree, key) != nullptr;
}

std::optional<PropertyList> PropertyList::valueForKey(std::string_view key) const {
    const PropertyListNode* value = find(node_->tree, key);
    if (!value)
        return std::nullopt;
    return PropertyList(std::make_unique<Node>(Node{*value}));
}

std::optional<std::string> PropertyList::stringForKey(std::string_view key) const {
    const PropertyListNode* value = find(node_->tree, key);
    const auto* text = value ? value->as<std::string>() : nullptr;
    return text ? std::optional(*text) : std::nullopt;
}

void PropertyList::setValueForKey(std::string_view key, const PropertyList& value) {
    auto* entries = node_->tree.as<PropertyListNode::Dictionary>();
    if (!entries)
        return;
    PropertyListNode copy = value.node_->tree; // first: `value` may be this dictionary
    auto place = std::find_if(entries->begin(), entries->end(),
                              [&](const auto& entry) { return entry.key == key; });
    if (place != entries->end())
        place->value = std::move(copy);
    else
        entries->push_back({std::string(key), std::move(copy)});
}

void PropertyList::removeValueForKey(std::string_view key) {
    if (auto* entries = node_->tree.as<PropertyListNode::Dictionary>())
        std::erase_if(*entries, [&](const auto& entry) { return entry.key == key; });
}

std::size_t PropertyList::count() const {
    const auto* values = node_->tree.as<PropertyListNode::Array>();
    return values ? values->size() : 0;
}

std::optional<PropertyList> PropertyList::valueAt(std::size_t index) const {
    if (index >= count())
        return std::nullopt;
    return PropertyList(
        std::make_unique<Node>(Node{(*node_->tree.as<PropertyListNode::Array>())[index]}));
}

void PropertyList::append(const PropertyList& value) {
    if (auto* values = node_->tree.as<PropertyListNode::Array>()) {
        PropertyListNode copy = value.node_->tree; // first: `value` may be this array
        values->push_back(std::move(copy));
    }
}

std::string PropertyList::xml() const {
    return writeXmlPropertyList(node_->tree);
}

std::string PropertyList::binary() const {
    return writeBinaryPropertyList(node_->tree);
}

std::string PropertyList::description() const {
    return describePropertyList(node_->tree);
}

} // namespace dubrix
