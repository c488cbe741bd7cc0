#include "device/BundleInfoCache.h"

#include <algorithm>
#include <atomic>
#include <thread>

#include <utility>

namespace dubrix {

namespace {

/// Below so many bundles a thread costs more than it helps.
constexpr std::size_t fewForAThread = 32;

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

BundleInfoCache::Entry BundleInfoCache::Round::look(const std::filesystem::path& folder) const {
    // Looked at before it is read: a change between the two shows at the next look.
    const Stamp stamp = stampOf(folder / "Info.plist");
    const auto known = cache_.entries_.find(folder.native());
    if (known != cache_.entries_.end() && known->second.stamp == stamp)
        return std::move(known->second);
    return {stamp, BundleInfo::read(folder)};
}

void BundleInfoCache::Round::readAhead(const std::vector<std::filesystem::path>& folders) {
    std::vector<Entry> entries(folders.size());
    std::atomic<std::size_t> next = 0;
    const auto work = [&] {
        for (std::size_t index = next++; index < folders.size(); index = next++)
            entries[index] = look(folders[index]);
    };
    const std::size_t most = std::min<std::size_t>(std::thread::hardware_concurrency(), 4);
    std::vector<std::thread> others;
    for (std::size_t number = 1; number < std::min(most, folders.size() / fewForAThread); ++number)
        others.emplace_back(work);
    work();
    for (std::thread& other : others)
        other.join();
    for (std::size_t index = 0; index < folders.size(); ++index)
        asked_.try_emplace(folders[index].native(), std::move(entries[index]));
}

const BundleInfo* BundleInfoCache::Round::read(const std::filesystem::path& folder) {
    const auto [place, isNew] = asked_.try_emplace(folder.native());
    Entry& entry = place->second;
    if (isNew)
        entry = look(folder);
    return entry.info ? &*entry.info : nullptr;
}

BundleInfoCache::Round::~Round() {
    std::erase_if(asked_,
                  [this](const auto& entry) { return !cache_.isSettled(entry.second.stamp); });
    cache_.entries_ = std::move(asked_);
}

} // namespace dubrix
