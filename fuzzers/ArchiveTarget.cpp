#include "device/archive/ZipEntryReader.h"
#include "files/FileTree.h"
#include "formats/images/BundleIcons.h"
#include "formats/images/PngChunks.h"
#include "formats/lists/PropertyList.h"
#include "fuzzers/Target.h"
#include "tests/device/DeviceFolder.h"

#include <functional>
#include <sys/mman.h>

namespace dubrix::fuzz {

namespace fs = std::filesystem;

namespace {

/// The application that is installed on the device before each input.
const std::string installedBefore = "com.example.before";

/// As much of an icon as the search for icons reads.
std::string iconHead() {
    std::string head(pngSignature);
    appendPngChunk(head, "IHDR", PngHeader{57, 57}.chunkData());
    return head;
}

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

    Contents everything() const { return contentsBelow(device.folder().path()); }
    static Contents besideBundles(Contents all) {
        std::erase_if(all, [](const auto& file) {
            return file.first.starts_with("device/var/containers/Bundle/");
        });
        return all;
    }

    DeviceFolder device;
    /// Looked at once: as long as every archive is refused, nothing has changed.
    Contents before;
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

void requireHarmless(const fs::path& bundle) {
    for (const auto& entry : fs::recursive_directory_iterator(bundle)) {
        const fs::file_status status = entry.symlink_status();
        if (fs::is_symlink(status)) {
            require(leadsInside(entry.path(), bundle), "no link leads out of its bundle");
            continue;
        }
        require(fs::is_directory(status) || fs::is_regular_file(status),
                "a bundle holds files, folders and links");
        require((status.permissions() & fs::perms(07002)) == fs::perms::none,
                "nothing is set-id, sticky or open to everybody");
    }
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
    requireHarmless(device.installed(identifier));
    const Contents tree = contentsBelow(device.installed(identifier));
    requireIconsInside(device.installed(identifier));

    const auto exported = device.folder() / "exported.ipa";
    require(bool(device.installer().exportTo(identifier, exported)),
            "what is installed can be exported");
    const DeviceFolder other;
    const auto again = other.installer().install(exported);
    require(bool(again), "an exported application can be installed");
    require(contentsBelow(other.installed(identifier)) == tree,
            "an export is the whole application");
    require(bool(device.installer().uninstall(identifier)) &&
                !device.registry().isInstalled(identifier) && device.leftovers() == 0,
            "what is installed can be removed");
}

const std::vector<std::string>& names() {
    static const std::vector<std::string> all =
        wordsOf("..|/|Payload/|Payload/X.app/|Payload/Y.app/|._X.app|./|//|\\|a|a/b|Info.plist|"
                "caf\xc3\xa9|e\xcc\x81|\xff\xfe|\n|~|CON|C:|" +
                std::string(1, '\0') + "|" + std::string(255, 'n') + "|" + std::string(256, 'n'));
    return all;
}

std::string anyInfo(Random& random) {
    static const std::vector<std::string> identifiers = {
        installedBefore, "com.example.new", "com.example.settings", "..", "a/b", "", " ",
        "\x7f",          "caf\xc3\xa9",     std::string(255, 'i')};
    return infoPlist(anyOf(identifiers, random));
}

std::vector<ZipItem> itemsOf(const std::string& bytes) {
    std::vector<ZipItem> items;
    const Descriptor file(::memfd_create("archive", MFD_CLOEXEC));
    if (!writeAll(file.get(), bytes))
        return items;
    auto entries = readZipDirectory(file.get());
    if (!entries)
        return items;
    constexpr mode_t kinds[] = {S_IFREG, S_IFDIR, S_IFLNK, S_IFIFO};
    constexpr std::size_t most = 4096;
    ZipEntryReader reader(file.get());
    for (const ZipEntry& entry : *entries) {
        auto data = reader.readWhole(entry, most);
        items.push_back({.name = entry.name,
                         .data = data ? *data : "",
                         .mode = kinds[static_cast<std::size_t>(entry.kind)] | entry.permissions,
                         .method = entry.method});
    }
    return items;
}

void changeItem(ZipItem& item, Random& random) {
    static const std::vector<mode_t> modes = {
        S_IFREG | 0644, S_IFREG | 06777, S_IFREG, S_IFLNK | 0777, S_IFDIR | 0755, S_IFDIR,
        S_IFIFO,        S_IFBLK,         0,       07777,          S_IFDIR | 01777};
    static const std::vector<std::string> targets = {"..", "../..", "/etc", "a", ".", "a/b/..", ""};
    const std::function<void()> changes[] = {
        [&] { item.name = withChangedBytes(item.name, random); },
        [&] { item.name += anyOf(names(), random); },
        [&] { item.mode = anyOf(modes, random); },
        [&] { item.mode = S_IFLNK | 0777, item.data = anyOf(targets, random); },
        [&] { item.data = withChangedBytes(item.data, random); },
        [&] { item.data = anyInfo(random); },
        [&] { item.method = once(4, random) ? random() & 0xff : 8 - item.method; },
        [&] { item.host = static_cast<unsigned>(below(20, random)); },
        [&] { item.flags = 1U << below(16, random); },
        [&] { item.claimedSize = troublesome(random); },
        [&] { item.crcError = 1; }};
    anyOf(changes, random)();
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
    require(Place::besideBundles(std::move(after)) == Place::besideBundles(place->before),
            "nothing but the bundles is touched");
    requireInstalled(*place, installed->info.identifier.value_or(""));
    place = std::make_unique<Place>();
}

std::vector<std::string> seeds() {
    const std::vector<ZipItem> iconic = {
        {"Payload/X.app/Info.plist",
         "{CFBundleIdentifier=\"com.example.icons\";CFBundleIconFile=\"a/b\";"
         "CFBundleIconFiles=(Icon,\"../X.app/Icon\",\"../../../../../../../beside\",link);"
         "CFBundleIcons={CFBundlePrimaryIcon={CFBundleIconFiles=(\"./Icon\");};};}"},
        {"Payload/X.app/Icon@2x.png", iconHead()},
        {"Payload/X.app/Icon.png", iconHead()},
        {"Payload/X.app/a/b", iconHead()},
        {"Payload/X.app/link", "a/b", S_IFLNK | 0777}};
    const ZipItem info{"Payload/X.app/Info.plist", infoPlist("com.example.new")};
    const std::vector<ZipItem> rich = {
        {"Payload/", "", S_IFDIR | 0755},
        {"Payload/X.app/", "", S_IFDIR | 0750},
        info,
        {"Payload/X.app/X", std::string(2000, 'x'), S_IFREG | 0755, 8},
        {"Payload/X.app/a/b/c", "deep", 0, 0, 0, 0},
        {"Payload/X.app/a/link", "../X", S_IFLNK | 0777},
        {"Payload/X.app/caf\xc3\xa9", "", S_IFREG | 06777, 8, 0x800},
        {"__MACOSX/Payload/._X.app", "beside"},
        {"iTunesMetadata.plist", "beside", S_IFREG | 0644, 8}};
    const ZipBytes wide = zipWithHole({info, {"Payload/X.app/large", "ab"}}, 30);
    // To be refused: what they would do, should they be installed, is seen.
    const ZipItem system{"Payload/X.app/Info.plist", infoPlist("com.example.settings")};
    const ZipItem climbing{"Payload/X.app/../../../../new", "changed"};
    const ZipItem outside{"Payload/X.app/a", "b/../../../../../../../beside", S_IFLNK | 0777};
    const ZipItem onward{"Payload/X.app/b", ".", S_IFLNK | 0777};
    const ZipItem through{"Payload/X.app/a/beside", "changed"};
    return {zipOf({info}),
            zipOf(rich),
            zipOf(iconic),
            zipOf({system}),
            zipOf({info, climbing}),
            zipOf({info, outside, onward}),
            zipOf({info, outside, onward, through}),
            wide.head + std::string(30, '\0') + wide.tail,
            "a program in front" + zipOf({info}),
            zipOf({{"Payload/X.app/Info.plist", infoPlist(installedBefore, "2"), 0100644, 8}}),
            zipOf({})};
}

const std::vector<std::string>& vocabulary() {
    static const std::vector<std::string> words = [] {
        std::vector<std::string> all = wordsOf("PK\1\2|PK\3\4|PK\5\6|PK\6\6|PK\6\7|@2x|.png|~ipad|"
                                               "CFBundleIconFile|={|=(");
        all.insert(all.end(), names().begin(), names().end());
        return all;
    }();
    return words;
}

std::string restructured(const std::string& bytes, Random& random) {
    std::vector<ZipItem> items = itemsOf(bytes);
    if (items.empty())
        return withChangedBytes(bytes, random);
    for (std::size_t changes = 1 + below(3, random); changes > 0; --changes) {
        const auto index = static_cast<long>(below(items.size(), random));
        if (once(6, random))
            items.insert(items.begin() + index, ZipItem(anyOf(items, random)));
        else if (items.size() > 1 && once(6, random))
            items.erase(items.begin() + index);
        else
            changeItem(anyOf(items, random), random);
    }
    return once(8, random) ? withChangedBytes(zipOf(items), random) : zipOf(items);
}

} // namespace dubrix::fuzz
