#include "device/BundleInfoCache.h"

namespace dubrix {

const BundleInfo* BundleInfoCache::read(const std::string& folder) {
    if (entries_.size() >= mostEntries && !entries_.contains(folder))
        entries_.clear();
    Entry& entry = entries_[folder];
    // Looked at before it is read: a change between the two shows at the next look.
    const FileStamp::Time now = FileStamp::now();
    const FileStamp stamp = FileStamp::of((folder + "/Info.plist").c_str());
    if (stamp != entry.stamp)
        entry = {stamp.keptAt(now, settling_), BundleInfo::read(folder)};
    return entry.info ? &*entry.info : nullptr;
}

} // namespace dubrix
