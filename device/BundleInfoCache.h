#pragma once

#include "device/BundleInfo.h"
#include "device/FileStamp.h"

#include <optional>
#include <string>
#include <unordered_map>

namespace dubrix {

/// What the Info.plist files of single bundles say, each read again only when it has changed since
/// it was last asked for. One thread at a time.
class BundleInfoCache {
public:
    /// Files changed less than `settling` ago are not kept.
    explicit BundleInfoCache(FileStamp::Time settling = std::chrono::seconds(1))
        : settling_(settling) {}

    /// What the bundle at `folder` says now; null when it says nothing. Valid until the next call.
    const BundleInfo* read(const std::string& folder);

private:
    struct Entry {
        FileStamp stamp;
        std::optional<BundleInfo> info;
    };
    /// All is forgotten when so many have been asked for, most of which are long gone.
    static constexpr std::size_t mostEntries = 1000;

    FileStamp::Time settling_;
    std::unordered_map<std::string, Entry> entries_;
};

} // namespace dubrix
