#include "device/Registry.h"

#include "device/FileTree.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace dubrix {

namespace fs = std::filesystem;

namespace {

bool isFolder(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

std::vector<std::string> namesBelow(const std::string& path) {
    const Descriptor folder = openFolderAt(AT_FDCWD, path);
    return folder.isOpen() ? namesIn(folder.get()).value_or(std::vector<std::string>{})
                           : std::vector<std::string>{};
}

/// Where a link in the registry's folder leads by its words and not by following it: an absolute
/// text means the device's own path, and one that climbs too far stays below the device's root.
std::string targetOfText(std::string_view text) {
    constexpr std::string_view usual = "../";
    if (text.starts_with(usual) && isPlainPath(text.substr(usual.size())))
        return std::string(Registry::bundlePath) + std::string(text.substr(usual.size() - 1));
    fs::path target = (fs::path(Registry::registryPath) / text).lexically_normal();
    if (!target.has_filename())
        target = target.parent_path();
    return target.native();
}

/// The root without slashes at its end, so that a device's path can follow.
std::string prefixOf(std::string root) {
    if (root.empty())
        root = ".";
    root.erase(root.find_last_not_of('/') + 1);
    return root;
}

} // namespace

Registry::Registry(const fs::path& root) : root_(prefixOf(root.native())) {}

bool Registry::isUsableIdentifier(std::string_view identifier) {
    const auto isControl = [](unsigned char byte) { return byte < 0x20 || byte == 0x7f; };
    return !identifier.empty() && identifier.size() <= 255 && identifier != "." &&
           identifier != ".." && identifier.find('/') == std::string_view::npos &&
           std::none_of(identifier.begin(), identifier.end(), isControl);
}

bool Registry::isInstalled(const std::string& identifier) const {
    return pathOf(identifier).has_value();
}

std::optional<std::string> Registry::pathOf(const std::string& identifier) const {
    std::optional<std::string> target = targetOf(identifier);
    return target && isFolder(hostPathText(*target)) ? target : std::nullopt;
}

std::optional<BundleInfo> Registry::infoOf(const std::string& identifier) const {
    const std::optional<std::string> path = pathOf(identifier);
    return path ? BundleInfo::read(hostPath(*path)) : std::nullopt;
}

std::vector<std::string> Registry::names() const {
    return namesBelow(hostPathText(registryPath));
}

std::vector<std::string> Registry::identifiers() const {
    std::vector<std::string> names = this->names();
    std::erase_if(names, [this](const std::string& name) { return !isInstalled(name); });
    return names;
}

std::vector<std::string> Registry::systemBundles() const {
    std::vector<std::string> bundles;
    for (const std::string& name : namesBelow(hostPathText(systemPath))) {
        std::string path = std::string(systemPath) + "/" + name;
        if (fs::path(name).extension() == ".app" && isFolder(hostPathText(path)))
            bundles.push_back(std::move(path));
    }
    return bundles;
}

bool Registry::isSystemApplication(const std::string& identifier) const {
    const std::vector<std::string> bundles = systemBundles();
    return std::any_of(bundles.begin(), bundles.end(), [&](const std::string& bundle) {
        const std::optional<BundleInfo> info = BundleInfo::read(hostPath(bundle));
        return info && info->identifier == identifier;
    });
}

std::optional<std::string> Registry::targetOf(const std::string& identifier) const {
    if (!isUsableIdentifier(identifier))
        return std::nullopt;
    std::array<char, PATH_MAX> text; // not cleared: this is asked for every number and application
    const ssize_t length = ::readlink(linkOf(identifier).c_str(), text.data(), text.size());
    if (length <= 0)
        return std::nullopt;
    return targetOfText({text.data(), static_cast<std::size_t>(length)});
}

Outcome Registry::enter(const std::string& identifier, std::string_view devicePath) const {
    if (!isUsableIdentifier(identifier))
        return Failure{"\"" + identifier + "\" cannot be an application's identifier"};
    // Relative, so that it leads to the bundle from inside the device and from outside.
    const fs::path text = fs::path(devicePath).lexically_relative(registryPath);
    const std::string temporary =
        hostPathText(bundlePath) + "/" + std::string(temporaryLinkPrefix) + randomUuid();
    if (::symlink(text.c_str(), temporary.c_str()) != 0)
        return systemFailure("cannot register " + identifier);
    if (::rename(temporary.c_str(), linkOf(identifier).c_str()) != 0) {
        const Failure failure = systemFailure("cannot register " + identifier);
        ::unlink(temporary.c_str());
        return failure;
    }
    return Success{};
}

Outcome Registry::strike(const std::string& identifier) const {
    if (!isUsableIdentifier(identifier) || ::unlink(linkOf(identifier).c_str()) != 0)
        return systemFailure("cannot unregister " + identifier);
    return Success{};
}

std::string Registry::hostPathText(std::string_view devicePath) const {
    std::string path;
    path.reserve(root_.size() + 1 + devicePath.size());
    path += root_;
    if (!devicePath.starts_with('/'))
        path += '/';
    return path += devicePath;
}

std::string Registry::pathBelowApplications(std::string_view devicePath) const {
    const std::string applications = std::string(applicationPath) + "/";
    return devicePath.starts_with(applications)
               ? std::string(devicePath.substr(applications.size()))
               : hostPathText(devicePath);
}

std::string Registry::linkOf(const std::string& identifier) const {
    return hostPathText(registryPath).append("/").append(identifier);
}

} // namespace dubrix
