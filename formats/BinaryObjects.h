#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace dubrix {

/// A binary property list that may be read without care.
struct BinaryObjects {
    /// The file, with `false` in place of every null reachable from the top object.
    std::string bytes;
    /// For each boolean or null reachable from the top object, in the order of the document:
    /// whether it was a null.
    std::vector<bool> nulls;
};

/// Follows every reference from the top object and checks each object on the way: inside the
/// object area, of a known type and width, text that is sound and without zero characters,
/// dictionary keys that are strings, no cycle, and the bounds of PropertyListNode.h. Objects that
/// cannot be reached are not looked at. Nothing when anything fails.
std::optional<BinaryObjects> checkedBinaryObjects(std::string_view bytes);

} // namespace dubrix
