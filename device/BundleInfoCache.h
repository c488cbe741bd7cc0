#pragma once

#include "device/BundleInfo.h"

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <unordered_map>
#include <vector>

namespace dubrix {

/// What the Info.plist files of many bundles say, kept from one round of questions to the next. A
/// file counts as unchanged while its place, size and times are; what one round did not ask for is
/// forgotten. One thread at a time.
class BundleInfoCache {
public:
    /// Files changed less than `settling` ago are not kept: another change could follow without
    /// leaving a trace, within one tick of the file system's clock.
    explicit BundleInfoCache(std::chrono::nanoseconds settling = std::chrono::seconds(1))
        : settling_(settling) {}

    class Round;

private:
    /// Empty for a file that is not there.
    struct Stamp {
        dev_t device = 0;
        ino_t node = 0;
        off_t size = 0;
        std::chrono::nanoseconds modified{0};
        std::chrono::nanoseconds changed{0};
        bool operator==(const Stamp&) const = default;
    };
    struct Entry {
        Stamp stamp;
        std::optional<BundleInfo> info;
    };
    using Entries = std::unordered_map<std::string, Entry>;

    static Stamp stampOf(const std::filesystem::path& file);
    bool isSettled(const Stamp& stamp) const;

    std::chrono::nanoseconds settling_;
    Entries entries_;
};

/// One round of questions. Its end decides what is kept.
class BundleInfoCache::Round {
public:
    explicit Round(BundleInfoCache& cache) : cache_(cache) {}
    ~Round();
    Round(const Round&) = delete;
    Round& operator=(const Round&) = delete;

    /// Looks at these bundles ahead, several at a time. Each is asked for at most once.
    void readAhead(const std::vector<std::filesystem::path>& folders);
    /// What the bundle at `folder` says now; null when it says nothing. Valid until the round ends.
    const BundleInfo* read(const std::filesystem::path& folder);

private:
    /// Any thread, as long as each folder is looked at by one.
    Entry look(const std::filesystem::path& folder) const;

    BundleInfoCache& cache_;
    Entries asked_;
};

} // namespace dubrix
