#include "benchmarks/BareDevice.h"

#include <plist/plist.h>

#include <array>
#include <climits>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace dubrix {

namespace {

constexpr int duplicates = 100;
const std::string registry = "/var/containers/Bundle/Registry/";

std::string contentsOf(const std::string& path) {
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat status{};
    ::fstat(file, &status);
    std::string bytes(static_cast<std::size_t>(status.st_size), '\0');
    bytes.resize(static_cast<std::size_t>(::read(file, bytes.data(), bytes.size())));
    ::close(file);
    return bytes;
}

} // namespace

std::string BareDevice::bundleOf(const std::string& identifier) const {
    std::array<char, PATH_MAX> text{};
    const ssize_t length =
        ::readlink((root_ + registry + identifier).c_str(), text.data(), text.size());
    return length < 0 ? "" : std::string(text.data(), static_cast<std::size_t>(length));
}

std::size_t BareDevice::readVersions(const std::string& source) const {
    std::size_t found = 0;
    for (int number = 1; number <= duplicates; ++number)
        found +=
            readText(root_ + registry + bundleOf(source + std::to_string(number)) + "/Info.plist",
                     "CFBundleVersion");
    return found;
}

std::size_t BareDevice::readAllNames() const {
    std::size_t found = 0;
    DIR* folder = ::opendir((root_ + registry).c_str());
    while (const dirent* entry = ::readdir(folder))
        if (entry->d_type == DT_LNK)
            found += readText(root_ + registry + bundleOf(entry->d_name) + "/Info.plist",
                              "CFBundleDisplayName");
    ::closedir(folder);
    return found;
}

void BareDevice::replace(const std::string& path, const std::string& bytes) {
    const std::string temporary = path + ".new";
    const int file = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (::write(file, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size()))
        std::perror("write");
    ::close(file);
    ::rename(temporary.c_str(), path.c_str());
}

std::size_t BareDevice::readText(const std::string& path, const char* key) {
    const std::string bytes = contentsOf(path);
    const auto length = static_cast<std::uint32_t>(bytes.size());
    plist_t list = nullptr;
    plist_from_memory(bytes.data(), length, &list);
    std::uint64_t size = 0;
    plist_get_string_ptr(plist_dict_get_item(list, key), &size);
    plist_free(list);
    return size;
}

} // namespace dubrix
