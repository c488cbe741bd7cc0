#pragma once

#include <cstdint>
#include <functional>

namespace dubrix {

/// Told how far a piece of work has come: `done` of `total` bytes, both only ever as they really
/// are. May be called often and by whichever thread works; an empty one is told nothing.
using Progress = std::function<void(std::uint64_t done, std::uint64_t total)>;

} // namespace dubrix
