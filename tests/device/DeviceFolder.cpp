#include "tests/device/DeviceFolder.h"

#include "formats/lists/PropertyList.h"

#include <sys/statvfs.h>

namespace dubrix {

namespace fs = std::filesystem;

std::string infoPlist(const std::string& identifier, const std::string& version) {
    PropertyList info = PropertyList::dictionary();
    info.setValueForKey("CFBundleIdentifier", PropertyList::string(identifier));
    info.setValueForKey("CFBundleVersion", PropertyList::string(version));
    return info.binary();
}

Contents contentsBelow(const fs::path& folder) {
    Contents contents;
    std::error_code error;
    for (const auto& entry : fs::recursive_directory_iterator(folder, error)) {
        struct stat status{};
        ::lstat(entry.path().c_str(), &status);
        std::string& content = contents[entry.path().native().substr(folder.native().size() + 1)];
        content = std::to_string(status.st_mode) + " ";
        if (entry.is_symlink())
            content += fs::read_symlink(entry.path()).native();
        else if (entry.is_regular_file())
            content += contentsOf(entry.path());
    }
    return contents;
}

fs::path placeInMemory() {
    constexpr std::uint64_t enough = std::uint64_t{1} << 30;
    struct statvfs status{};
    const bool isFit = ::statvfs("/dev/shm", &status) == 0 && (status.f_flag & ST_NOEXEC) == 0 &&
                       status.f_bavail * status.f_frsize > enough &&
                       ::access("/dev/shm", W_OK | X_OK) == 0;
    return isFit ? "/dev/shm" : fs::temp_directory_path();
}

long DeviceFolder::leftovers() const {
    const auto bundles = root() / "var/containers/Bundle";
    const auto count = [](const fs::path& path) {
        return std::distance(fs::directory_iterator(path), {});
    };
    const long kept = exists(bundles / "Removed") ? count(bundles / "Removed") : -1;
    return count(bundles) - 3 + count(bundles / "Application") - kept -
           static_cast<long>(registry().identifiers().size());
}

} // namespace dubrix
