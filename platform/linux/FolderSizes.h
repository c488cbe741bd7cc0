#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace dubrix {

/// The size in bytes of every entry below `folder`, recursively and in no order: what the file
/// system gives for the entry itself, folders included. Links below it are measured and not
/// followed. What cannot be read is left out.
std::vector<std::int64_t> sizesBelow(const std::string& folder);

} // namespace dubrix
