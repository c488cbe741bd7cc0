#include "device/BundleInfoCache.h"

#include <utility>

namespace dubrix {

namespace {

std::chrono::nanoseconds sinceEpoch(const timespec& time) {
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

} // namespace

BundleInfoCache::Stamp BundleInfoCache::stampOf(const std::filesystem::path& file) {
    struct stat status {};
    if (::stat(file.c_str(), &status) != 0)
        return {};
    return {status.st_dev, status.st_ino, status.st_size, sinceEpoch(status.st_mtim),
            sinceEpoch(status.st_ctim)};
}

bool BundleInfoCache::isSettled(const Stamp& stamp) const {
    const auto now = std::chrono::system_clock::now().time_since_epoch();
    return stamp != Stamp{} && stamp.changed + settling_ <= now;
}

const BundleInfo* BundleInfoCache::Round::read(const std::filesystem::path& folder) {
    const auto [place, isNew] = asked_.try_emplace(folder.native());
    Entry& entry = place->second;
    if (isNew) {
        // Looked at before it is read: a change between the two shows at the next look.
        const Stamp stamp = stampOf(folder / "Info.plist");
        const auto known = cache_.entries_.find(folder.native());
        if (known != cache_.entries_.end() && known->second.stamp == stamp)
            entry = std::move(known->second);
        else
            entry = {stamp, BundleInfo::read(folder)};
    }
    return entry.info ? &*entry.info : nullptr;
}

BundleInfoCache::Round::~Round() {
    std::erase_if(asked_,
                  [this](const auto& entry) { return !cache_.isSettled(entry.second.stamp); });
    cache_.entries_ = std::move(asked_);
}

} // namespace dubrix
