#include "device/RegistryLinks.h"

#include "device/FileTree.h"

namespace dubrix {

std::optional<std::string> RegistryLinks::pathOf(const std::string& identifier) {
    const std::scoped_lock lock(mutex_);
    const Target* const target = installed(identifier);
    return target ? std::optional(target->path) : std::nullopt;
}

bool RegistryLinks::isInstalled(const std::string& identifier) {
    const std::scoped_lock lock(mutex_);
    return installed(identifier) != nullptr;
}

const RegistryLinks::Target* RegistryLinks::installed(const std::string& identifier) {
    forgetChanged();
    auto known = targets_.find(identifier);
    if (known == targets_.end())
        known = targets_.emplace(identifier, read(identifier)).first;
    std::optional<Target>& target = known->second;
    // A bundle goes only after its link has changed: where none is, the link may tell of the next.
    for (int tries = 0; target && tries < Registry::mostReplacements; ++tries) {
        if (isThere(*target))
            return &*target;
        std::optional<Target> next = read(identifier);
        if (next && next->path == target->path)
            break;
        target = std::move(next);
    }
    return nullptr;
}

bool RegistryLinks::isThere(const Target& target) const {
    const auto isFolder = [&](const std::string& path) {
        struct stat status {};
        return ::fstatat(bundles_.get(), path.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 &&
               S_ISDIR(status.st_mode);
    };
    return isFolder(target.folder.substr(0, target.folder.rfind('/'))) && isFolder(target.folder);
}

void RegistryLinks::forgetChanged() {
    const FileStamp::Time now = FileStamp::now();
    FileStamp stamp = FileStamp::of(links_.get());
    if (stamp == stamp_ && targets_.size() < mostTargets)
        return;
    targets_.clear();
    if (stamp != stamp_) {
        links_ = openFolderAt(AT_FDCWD, registry_.hostPathText(Registry::registryPath));
        bundles_ = openFolderAt(AT_FDCWD, registry_.hostPathText(Registry::applicationPath));
        stamp = FileStamp::of(links_.get());
    }
    stamp_ = stamp.keptAt(now, settling_);
}

std::optional<RegistryLinks::Target> RegistryLinks::read(const std::string& identifier) const {
    std::optional<std::string> path = registry_.targetOf(identifier);
    if (!path)
        return std::nullopt;
    std::string folder = registry_.pathBelowApplications(*path);
    return Target{std::move(*path), std::move(folder)};
}

} // namespace dubrix
