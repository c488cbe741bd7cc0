#pragma once

#include "files/Result.h"

#include <cstdint>
#include <functional>
#include <vector>

namespace dubrix {

/// Works on one of many files, by its index.
using FileWork = std::function<Outcome(std::size_t index)>;

/// Works on files of these sizes in bytes, on as many processors as are worth it, each thread by a
/// worker of its own, which is made and called there. The outcome is what one after the other would
/// have given: of several failures, the first in the order of the indexes.
Outcome workOnFiles(const std::vector<std::uint64_t>& sizes,
                    const std::function<FileWork()>& makeWorker);

/// Files of this size in bytes and more are worked on first, so that none is begun when the rest is
/// done.
inline constexpr std::uint64_t largeFile = std::uint64_t{1} << 20;

} // namespace dubrix
