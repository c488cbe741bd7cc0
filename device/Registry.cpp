#include "device/Registry.h"

#include "device/FileTree.h"

#include <algorithm>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace dubrix {

namespace fs = std::filesystem;

namespace {

bool isFolder(const fs::path& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

std::vector<std::string> namesBelow(const fs::path& path) {
    const Descriptor folder = openFolderAt(AT_FDCWD, path.native());
    return folder.isOpen() ? namesIn(folder.get()).value_or(std::vector<std::string>{})
                           : std::vector<std::string>{};
}

} // namespace

Registry::Registry(fs::path root) : root_(std::move(root)) {}

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
    return target && isFolder(hostPath(*target)) ? target : std::nullopt;
}

std::optional<BundleInfo> Registry::infoOf(const std::string& identifier) const {
    const std::optional<std::string> path = pathOf(identifier);
    return path ? BundleInfo::read(hostPath(*path)) : std::nullopt;
}

std::map<std::string, std::string> Registry::paths() const {
    std::map<std::string, std::string> paths;
    for (std::string& name : namesBelow(hostPath(registryPath)))
        if (std::optional<std::string> path = pathOf(name))
            paths.emplace(std::move(name), std::move(*path));
    return paths;
}

std::vector<std::string> Registry::identifiers() const {
    std::vector<std::string> names = namesBelow(hostPath(registryPath));
    std::erase_if(names, [this](const std::string& name) { return !isInstalled(name); });
    return names;
}

std::vector<std::string> Registry::systemBundles() const {
    std::vector<std::string> bundles;
    for (const std::string& name : namesBelow(hostPath(systemPath))) {
        std::string path = std::string(systemPath) + "/" + name;
        if (fs::path(name).extension() == ".app" && isFolder(hostPath(path)))
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
    std::error_code error;
    const fs::path text = fs::read_symlink(linkOf(identifier), error);
    if (error || text.empty())
        return std::nullopt;
    // By its words and not by following it: an absolute text means the device's own path, and one
    // that climbs too far stays below the device's root.
    fs::path target = (fs::path(registryPath) / text).lexically_normal();
    if (!target.has_filename())
        target = target.parent_path();
    return target.native();
}

Outcome Registry::enter(const std::string& identifier, std::string_view devicePath) const {
    if (!isUsableIdentifier(identifier))
        return Failure{"\"" + identifier + "\" cannot be an application's identifier"};
    // Relative, so that it leads to the bundle from inside the device and from outside.
    const fs::path text = fs::path(devicePath).lexically_relative(registryPath);
    const fs::path temporary =
        hostPath(bundlePath) / (std::string(temporaryLinkPrefix) + randomUuid());
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

fs::path Registry::hostPath(std::string_view devicePath) const {
    return root_ / fs::path(devicePath).relative_path();
}

fs::path Registry::linkOf(const std::string& identifier) const {
    return hostPath(registryPath) / identifier;
}

} // namespace dubrix
