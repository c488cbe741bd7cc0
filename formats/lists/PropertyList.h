#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace dubrix {

/// One property-list value with everything below it, owned. Copying copies the whole value.
///
/// Reads the three forms in which the phone keeps property lists (XML, binary, old-style text) and
/// writes the XML form. Values that are not touched keep their type and value through a read and a
/// write: dates, data, UIDs, 64-bit integers (signed and unsigned), reals to the last bit.
class PropertyList {
public:
    enum class Type { Boolean, Integer, Real, String, Data, Date, Uid, Null, Array, Dictionary };

    /// The value in `bytes`, whichever form they have; nothing for damaged, truncated, cyclic or
    /// absurdly deep (more than 256 levels) or large input (more than 128 MiB or 2^20 values,
    /// shared ones counted wherever they appear). Never throws on bad input. Sets, integers beyond
    /// 64 bits, UIDs beyond 32 and texts with zero characters count as damage.
    static std::optional<PropertyList> parse(std::string_view bytes);

    static PropertyList dictionary();
    static PropertyList array();
    static PropertyList string(std::string_view utf8);
    static PropertyList boolean(bool value);
    static PropertyList integer(std::int64_t value);
    static PropertyList real(double value);
    static PropertyList data(std::string_view bytes);

    PropertyList(const PropertyList& other);
    PropertyList(PropertyList&& other) noexcept;
    PropertyList& operator=(const PropertyList& other);
    PropertyList& operator=(PropertyList&& other) noexcept;
    ~PropertyList();

    /// Same type and same value, all the way down; dictionaries compare without order.
    bool operator==(const PropertyList& other) const;

    Type type() const;
    bool isDictionary() const { return type() == Type::Dictionary; }

    /// The text of a string; nothing for any other type.
    std::optional<std::string> stringValue() const;
    /// Read as a truth value the way the phone does: a boolean itself, a number when it is not
    /// zero, a string that begins (after blanks, a sign and zeros) with Y, y, T, t or 1 to 9.
    /// False for every other type.
    bool booleanValue() const;
    /// Read as single precision: a number's value, a boolean as 0 or 1, the number a string begins
    /// with; 0 for every other type.
    float floatValue() const;

    /// Dictionary access. On a value of another type, look-ups find nothing and changes are
    /// ignored. Keys come in file order; a value set for a new key goes to the end.
    std::vector<std::string> keys() const;
    bool hasKey(std::string_view key) const;
    std::optional<PropertyList> valueForKey(std::string_view key) const;
    std::optional<std::string> stringForKey(std::string_view key) const;
    void setValueForKey(std::string_view key, const PropertyList& value);
    void removeValueForKey(std::string_view key);

    /// Array access: 0 and nothing on a value of another type.
    std::size_t count() const;
    std::optional<PropertyList> valueAt(std::size_t index) const;
    void append(const PropertyList& value);

    /// The whole value in the phone's XML form, document type and trailing line break included.
    /// What that form cannot hold is fitted: dates to whole seconds of the years 1 to 9999, a null
    /// to an empty string (in a dictionary it is left out), bytes that are no UTF-8 to U+FFFD.
    std::string xml() const;
    /// The whole value in the binary form ("bplist00").
    std::string binary() const;
    /// The value as the phone prints it into a text: a string as it stands, a boolean as 1 or 0,
    /// numbers in their shortest form, containers in the old-style text form.
    std::string description() const;

private:
    struct Node;
    explicit PropertyList(std::unique_ptr<Node> node);
    std::unique_ptr<Node> node_;
};

} // namespace dubrix
