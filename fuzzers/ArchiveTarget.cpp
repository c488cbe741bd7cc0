#include "formats/images/BundleIcons.h"
#include "formats/lists/PropertyList.h"
#include "fuzzers/ArchiveSamples.h"
#include "fuzzers/Target.h"
#include "tests/device/DeviceFolder.h"

namespace dubrix::fuzz {

namespace fs = std::filesystem;

namespace {

/// A device that has an application, with something beside it that is none of an installer's
/// business.
struct Place {
    Place() {
        putFile(device.folder() / "beside", iconHead());
        const auto archive = device.application(installedBefore, "1", {{"file", "old"}});
        require(bool(device.installer().install(archive)), "a sound archive is installed");
        fs::remove(archive);
        before = everything();
    }
    Place(const Place&) = delete;
    Place& operator=(const Place&) = delete;

    std::map<std::string, std::string> everything() const {
        auto all = device.snapshot();
        for (const auto& entry : fs::directory_iterator(device.folder().path()))
            all[entry.path().native()] = entry.is_regular_file() ? contentsOf(entry.path()) : "";
        return all;
    }

    std::map<std::string, std::string> besideBundles(std::map<std::string, std::string> all) const {
        const std::string bundles = device.registry().hostPath(Registry::bundlePath).native() + "/";
        std::erase_if(all, [&](const auto& file) { return file.first.starts_with(bundles); });
        return all;
    }

    DeviceFolder device;
    /// Looked at once: as long as every archive is refused, nothing has changed.
    std::map<std::string, std::string> before;
};

/// Whether a link leads to something of the bundle, present or not, or to nothing that there could
/// be: no file has a name of more than 255 bytes.
bool leadsInside(const fs::path& link, const fs::path& bundle) {
    std::error_code error;
    const auto target = fs::weakly_canonical(link, error).native();
    if (error != std::errc::filename_too_long)
        return !error && (target + "/").starts_with(bundle.native() + "/");
    struct stat status{};
    return ::stat(link.c_str(), &status) != 0 && errno == ENAMETOOLONG;
}

/// Bundle-relative name to type, permissions, time and content.
std::map<std::string, std::string> treeOf(const fs::path& bundle) {
    std::map<std::string, std::string> tree;
    for (const auto& entry : fs::recursive_directory_iterator(bundle)) {
        struct stat status{};
        ::lstat(entry.path().c_str(), &status);
        std::string& content = tree[entry.path().lexically_relative(bundle).native()];
        content =
            std::to_string(status.st_mode) + " " + std::to_string(status.st_mtim.tv_sec) + " ";
        if (S_ISLNK(status.st_mode)) {
            content += fs::read_symlink(entry.path()).native();
            require(leadsInside(entry.path(), bundle), "no link leads out of its bundle");
            continue;
        }
        require(S_ISDIR(status.st_mode) || S_ISREG(status.st_mode),
                "a bundle holds files, folders and links");
        require((status.st_mode & 07002) == 0, "nothing is set-id, sticky or open to everybody");
        if (S_ISREG(status.st_mode))
            content += contentsOf(entry.path());
    }
    return tree;
}

/// The list of a bundle names its icons, and what it names is read and written.
void requireIconsInside(const fs::path& bundle) {
    const auto info = PropertyList::parse(contentsOf(bundle / "Info.plist"));
    require(info.has_value(), "an installed property list can be read");
    constexpr unsigned pixels = 120;
    for (const fs::path& icon : iconFilesOfBundle(bundle, *info, pixels))
        require(fs::canonical(icon) == icon && icon.native().starts_with(bundle.native() + "/"),
                "every icon is a file of the bundle");
}

/// What else must hold once an archive was accepted.
void requireInstalled(Place& place, const std::string& identifier) {
    const DeviceFolder& device = place.device;
    require(Registry::isUsableIdentifier(identifier) && device.registry().isInstalled(identifier),
            "what is said to be installed is installed");
    require(identifier == installedBefore || device.versionOf(installedBefore) == "1",
            "another application stays as it was");
    require(identifier != "com.example.settings" &&
                device.registry().isSystemApplication("com.example.settings"),
            "a system application stays");
    require(device.leftovers() == 0, "an installation leaves nothing lying about");
    const auto tree = treeOf(device.installed(identifier));
    require(tree.contains("Info.plist"), "an installed bundle has its property list");
    requireIconsInside(device.installed(identifier));

    const auto exported = device.folder() / "exported.ipa";
    require(bool(device.installer().exportTo(identifier, exported)),
            "what is installed can be exported");
    const DeviceFolder other;
    const auto again = other.installer().install(exported);
    require(bool(again), "an exported application can be installed");
    require(treeOf(other.installed(identifier)) == tree, "an export is the whole application");
    require(bool(device.installer().uninstall(identifier)) &&
                !device.registry().isInstalled(identifier) && device.leftovers() == 0,
            "what is installed can be removed");
}

} // namespace

void tryInput(std::string_view bytes) {
    static auto place = std::make_unique<Place>();
    const auto archive = place->device.archive("tried.ipa", std::string(bytes));
    auto installed = place->device.installer().install(archive);
    require(contentsOf(archive) == bytes, "an archive stays as it was");
    fs::remove(archive);
    auto after = place->everything();
    if (!installed) {
        require(!installed.failure().text.empty(), "a refusal has a reason");
        require(after == place->before, "a refused archive changes nothing");
        return;
    }
    require(place->besideBundles(std::move(after)) == place->besideBundles(place->before),
            "nothing but the bundles is touched");
    requireInstalled(*place, installed->info.identifier.value_or(""));
    place = std::make_unique<Place>();
}

} // namespace dubrix::fuzz
