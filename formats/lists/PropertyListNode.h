#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <variant>
#include <vector>

namespace dubrix {

/// Bounds on what is read, shared by every form: levels of containers, values in all (shared ones
/// counted wherever they appear) and bytes, of the input and of its texts and data written out.
constexpr int maximumPropertyListDepth = 256;
constexpr std::size_t maximumPropertyListValues = std::size_t{1} << 20;
constexpr std::size_t maximumPropertyListBytes = std::size_t{1} << 27;

/// The tree behind PropertyList, open to the readers and writers of the forms.
struct PropertyListNode {
    struct Null {};
    struct Data {
        std::string bytes;
    };
    struct Date {
        double secondsSince2001; ///< UTC, 2001-01-01T00:00:00Z is 0; any double in the binary form
    };
    struct Uid {
        std::uint64_t value;
    };
    struct Entry;
    using Array = std::vector<PropertyListNode>;
    using Dictionary = std::vector<Entry>;

    /// An integer is held as uint64_t only when it does not fit int64_t.
    std::variant<Null, bool, std::int64_t, std::uint64_t, double, std::string, Data, Date, Uid,
                 Array, Dictionary>
        value;

    template<class T>
    const T* as() const {
        return std::get_if<T>(&value);
    }
    template<class T>
    T* as() {
        return std::get_if<T>(&value);
    }
};

struct PropertyListNode::Entry {
    std::string key;
    PropertyListNode value;
};

/// Collects the pairs of a dictionary that is being read. Of a key that comes again the first value
/// holds, as on the phone.
class PropertyListDictionaryBuilder {
public:
    /// Where the value of `key` is to be read to, until the next key is put.
    PropertyListNode& put(std::string key);
    PropertyListNode take() { return {std::move(entries_)}; }

private:
    /// The number of the entry with this key; that of a new one when there is none, which is then
    /// to be put.
    std::size_t indexOf(const std::string& key);

    /// Up to so many keys are found faster by looking at each than through a table.
    static constexpr std::size_t fewKeys = 32;
    PropertyListNode::Dictionary entries_;
    /// What a value goes to whose key was there before.
    PropertyListNode repeated_;
    std::unordered_map<std::string, std::size_t> indexes_;
};

/// Same type and value all the way down; dictionaries without order; a NaN equals a NaN.
bool equal(const PropertyListNode& left, const PropertyListNode& right);

} // namespace dubrix
