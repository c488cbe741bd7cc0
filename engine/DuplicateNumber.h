#pragma once

namespace dubrix {

/// Duplicates of one source are numbered from 1 up to this.
inline constexpr int highestDuplicateNumber = 100;

} // namespace dubrix
