#pragma once

#include "device/Progress.h"
#include "device/Result.h"
#include "device/StepHook.h"
#include "device/ZipEntryReader.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <mutex>
#include <vector>

namespace dubrix {

/// Unpacks the files of a bundle into folders that are there already, on as many processors as are
/// worth it, in memory that does not grow with the archive. The outcome is what one after the
/// other would have given: of several failures, the first in the archive's order.
class FileUnpacking {
public:
    /// Everything given stays the caller's and outlives the unpacking; `root` is the open bundle
    /// folder. `step` and `progress`, which counts bytes, are called by one thread at a time, not
    /// always the same.
    FileUnpacking(const std::vector<ZipEntry>& files, int archive, int root, const StepHook& step,
                  const Progress& progress);

    Outcome run();

private:
    std::size_t workers() const;
    void work();
    Outcome unpack(const ZipEntry& entry, ZipEntryReader& reader);
    void count(std::uint64_t bytes);
    void record(std::size_t index, Outcome done);

    const std::vector<ZipEntry>& files_;
    const int archive_;
    const int root_;
    const StepHook& step_;
    const Progress& progress_;
    std::uint64_t total_;
    /// Indexes of the files: large ones first, so that none is begun when the rest is done.
    std::vector<std::size_t> order_;
    std::atomic<std::size_t> next_{0};
    /// The first file in the archive's order that failed; no later one is begun.
    std::atomic<std::size_t> firstFailed_{std::numeric_limits<std::size_t>::max()};
    std::mutex recording_; // of what follows
    std::uint64_t unpacked_ = 0;
    Outcome outcome_ = Success{};
};

} // namespace dubrix
