#include "device/registry/Registry.h"

#include "files/FileTree.h"
#include "formats/text/PlainText.h"

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
    struct stat status{};
    return ::lstat(path.c_str(), &status) == 0 && S_ISDIR(status.st_mode);
}

/// What follows `folder` and a slash in `path`; empty for a path that does not begin with them.
std::string_view below(std::string_view folder, std::string_view path) {
    const bool isBelow = path.starts_with(folder) && path.substr(folder.size()).starts_with('/');
    return isBelow ? path.substr(folder.size() + 1) : std::string_view{};
}

bool isBundleName(std::string_view name) {
    constexpr std::string_view extension = ".app";
    return name.size() > extension.size() && name.ends_with(extension) && isPlainPath(name) &&
           name.find('/') == std::string_view::npos;
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

/// What a link to this bundle says: relative, so that it leads there from inside the device and
/// from outside.
std::string textFor(std::string_view devicePath) {
    return fs::path(devicePath).lexically_relative(Registry::registryPath).native();
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

Registry Registry::removed() const {
    Registry record = *this;
    record.links_ = removedPath;
    return record;
}

bool Registry::mayBeRegistered(std::string_view identifier) {
    const auto isControl = [](unsigned char byte) { return byte < 0x20 || byte == 0x7f; };
    return !identifier.empty() && identifier.size() <= 255 && identifier != "." &&
           identifier != ".." && identifier.find('/') == std::string_view::npos &&
           std::ranges::none_of(identifier, isControl);
}

bool Registry::isUsableIdentifier(std::string_view identifier) {
    return mayBeRegistered(identifier) && !identifier.starts_with('-') && !actsOnLine(identifier);
}

bool Registry::isBundlePath(std::string_view devicePath) {
    const std::string_view place = below(applicationPath, devicePath);
    const std::size_t slash = place.find('/');
    // What is being unpacked or removed lies in hidden folders.
    const bool isApplication = slash != std::string_view::npos && !place.starts_with('.') &&
                               isPlainPath(place) && isBundleName(place.substr(slash + 1));
    return isApplication || isBundleName(below(systemPath, devicePath));
}

bool Registry::isInstalled(const std::string& identifier) const {
    return pathOf(identifier).has_value();
}

std::optional<std::string> Registry::pathOf(const std::string& identifier) const {
    std::optional<std::string> target = targetOf(identifier);
    // A bundle goes only after its link has changed: where none is, the link may tell of the next.
    for (int tries = 0; target && tries < mostReplacements; ++tries) {
        if (isBundleThere(*target))
            return target;
        std::optional<std::string> next = targetOf(identifier);
        if (next == target)
            break;
        target = std::move(next);
    }
    return std::nullopt;
}

bool Registry::isBundleThere(const std::string& devicePath) const {
    const std::string path = hostPathText(devicePath);
    return isFolder(path.substr(0, path.rfind('/'))) && isFolder(path);
}

std::optional<BundleInfo> Registry::infoOf(const std::string& identifier) const {
    const std::optional<Bundle> bundle = bundleOf(identifier);
    return bundle ? bundle->info : std::nullopt;
}

std::optional<Registry::Bundle> Registry::bundleOf(const std::string& identifier) const {
    std::optional<std::string> path = pathOf(identifier);
    for (int tries = 0; path && tries < mostReplacements; ++tries) {
        std::optional<BundleInfo> info =
            BundleInfo::readFile(hostPathText(*path) + "/Info.plist",
                                 std::string_view(*path).substr(path->rfind('/') + 1));
        std::optional<std::string> next = info ? path : pathOf(identifier);
        if (next == path)
            return Bundle{std::move(*path), std::move(info)};
        path = std::move(next);
    }
    return std::nullopt;
}

Result<std::vector<std::string>> Registry::names() const {
    const Descriptor folder = openFolderAt(AT_FDCWD, hostPathText(links_));
    if (!folder.isOpen() && errno == ENOENT)
        return std::vector<std::string>{};
    std::optional<std::vector<std::string>> names =
        folder.isOpen() ? namesIn(folder.get()) : std::nullopt;
    if (!names)
        return systemFailure("cannot read " + std::string(links_));
    return std::move(*names);
}

std::vector<std::string> Registry::identifiers() const {
    Result<std::vector<std::string>> found = this->names();
    if (!found)
        return {};
    std::vector<std::string> names = std::move(*found);
    std::erase_if(names, [this](const std::string& name) { return !isInstalled(name); });
    return names;
}

std::vector<std::string> Registry::systemBundles() const {
    std::vector<std::string> bundles;
    const Descriptor folder = openFolderAt(AT_FDCWD, hostPathText(systemPath));
    const auto names = folder.isOpen() ? namesIn(folder.get()) : std::nullopt;
    for (const std::string& name : names.value_or(std::vector<std::string>{})) {
        std::string path = std::string(systemPath) + "/" + name;
        if (isBundlePath(path) && isFolder(hostPathText(path)))
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

bool Registry::isRegistered(const std::string& identifier) const {
    struct stat status{};
    return mayBeRegistered(identifier) && ::lstat(linkOf(identifier).c_str(), &status) == 0 &&
           S_ISLNK(status.st_mode);
}

std::optional<std::string> Registry::targetOf(const std::string& identifier) const {
    if (!mayBeRegistered(identifier))
        return std::nullopt;
    std::array<char, PATH_MAX> text; // not cleared: this is asked for every number and application
    const ssize_t length = ::readlink(linkOf(identifier).c_str(), text.data(), text.size());
    if (length <= 0)
        return std::nullopt;
    std::string target = targetOfText({text.data(), static_cast<std::size_t>(length)});
    return isBundlePath(target) ? std::optional(std::move(target)) : std::nullopt;
}

Outcome Registry::enter(const std::string& identifier, std::string_view devicePath,
                        const std::function<Outcome()>& beforeChange) const {
    if (!isUsableIdentifier(identifier))
        return Failure{"\"" + identifier + "\" cannot be an application's identifier"};
    const std::string temporary =
        hostPathText(bundlePath) + "/" + std::string(temporaryLinkPrefix) + randomUuid();
    if (::symlink(textFor(devicePath).c_str(), temporary.c_str()) != 0)
        return systemFailure("cannot register " + identifier);
    Outcome done = beforeChange ? beforeChange() : Success{};
    if (done && ::rename(temporary.c_str(), linkOf(identifier).c_str()) != 0)
        done = systemFailure("cannot register " + identifier);
    if (!done)
        ::unlink(temporary.c_str());
    return done;
}

Outcome Registry::enterNew(const std::string& identifier, std::string_view devicePath) const {
    if (!isUsableIdentifier(identifier))
        return Failure{"\"" + identifier + "\" cannot be an application's identifier"};
    if (::symlink(textFor(devicePath).c_str(), linkOf(identifier).c_str()) != 0)
        return systemFailure("cannot register " + identifier);
    return Success{};
}

Outcome Registry::strike(const std::string& identifier) const {
    if (!mayBeRegistered(identifier) || ::unlink(linkOf(identifier).c_str()) != 0)
        return systemFailure("cannot unregister " + identifier);
    return Success{};
}

Outcome Registry::flush() const {
    const Descriptor links = openFolder(links_);
    // Some file systems have nothing to flush of a folder and say so.
    if (!links.isOpen() || (::fsync(links.get()) != 0 && errno != EINVAL))
        return systemFailure("cannot write " + std::string(links_) + " to the disk");
    return Success{};
}

Descriptor Registry::openFolder(std::string_view devicePath) const {
    Descriptor folder(::open(hostPathText("/").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    for (const fs::path& name : fs::path(devicePath).relative_path())
        if (folder.isOpen())
            folder = openFolderAt(folder.get(), name.native());
    return folder;
}

std::string Registry::hostPathText(std::string_view devicePath) const {
    std::string path;
    path.reserve(root_.size() + 1 + devicePath.size());
    path += root_;
    if (!devicePath.starts_with('/'))
        path += '/';
    return path += devicePath;
}

std::string Registry::linkOf(const std::string& identifier) const {
    return hostPathText(links_).append("/").append(identifier);
}

} // namespace dubrix
