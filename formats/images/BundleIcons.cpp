#include "formats/images/BundleIcons.h"

#include "formats/images/ImageDecoding.h"
#include "formats/images/PngChunks.h"
#include "formats/lists/PropertyList.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <tuple>
#include <utility>

namespace dubrix {

namespace fs = std::filesystem;

namespace {

using Names = std::vector<std::string>;

constexpr std::array variants = {"",           "@2x",   "@3x",      "~iphone", "@2x~iphone",
                                 "@3x~iphone", "~ipad", "@2x~ipad", "@3x~ipad"};

/// A real list has a dozen names; the rest of an endless one is not looked for.
constexpr std::size_t mostNames = 64;

Names textsOf(const std::optional<PropertyList>& list) {
    Names names;
    if (!list || list->type() != PropertyList::Type::Array)
        return names;
    for (std::size_t index = 0; index < std::min(list->count(), mostNames); ++index)
        if (auto name = list->valueAt(index)->stringValue())
            names.push_back(std::move(*name));
    return names;
}

Names primaryIcon(const PropertyList& info, std::string_view key) {
    const auto icons = info.valueForKey(key);
    const auto primary = icons ? icons->valueForKey("CFBundlePrimaryIcon") : std::nullopt;
    return primary ? textsOf(primary->valueForKey("CFBundleIconFiles")) : Names{};
}

/// So many of the sources are lists; the others are asked by the phone where there is none.
constexpr unsigned listSources = 3;

std::array<Names, 5> sourcesOf(const PropertyList& info) {
    const auto single = info.stringForKey("CFBundleIconFile");
    return {primaryIcon(info, "CFBundleIcons"), textsOf(info.valueForKey("CFBundleIconFiles")),
            primaryIcon(info, "CFBundleIcons~ipad"), single ? Names{*single} : Names{},
            Names{"Icon"}};
}

bool takeOffEnd(std::string& name, std::string_view ending) {
    const bool ends = name.ends_with(ending);
    if (ends)
        name.resize(name.size() - ending.size());
    return ends;
}

/// A listed name without the extension and the marks of a variant that it may carry itself.
std::string baseName(std::string name) {
    if (!takeOffEnd(name, ".png"))
        takeOffEnd(name, ".PNG");
    if (!takeOffEnd(name, "~ipad"))
        takeOffEnd(name, "~iphone");
    if (!takeOffEnd(name, "@2x"))
        takeOffEnd(name, "@3x");
    return name;
}

Names fileNames(const std::string& listed) {
    Names files{listed};
    const std::string base = baseName(listed);
    for (const char* const extension : {".png", ""})
        for (const char* const variant : variants)
            files.push_back(base + variant + extension);
    return files;
}

/// The shorter side in pixels that the head of a PNG gives; 0 for anything else, and for sizes that
/// no icon has.
unsigned edgeOf(const fs::path& file) {
    std::string head(64, '\0'); // the signature, the mark of a crushed one, the image header
    std::ifstream stream(file, std::ios::binary);
    stream.read(head.data(), static_cast<std::streamsize>(head.size()));
    head.resize(static_cast<std::size_t>(stream.gcount()));
    PngChunkReader chunks(head);
    auto chunk = chunks.next();
    if (chunk && isCrushedPng(head))
        chunk = chunks.next();
    const auto header =
        chunk && chunk->type == "IHDR" ? PngHeader::fromChunkData(chunk->data) : std::nullopt;
    if (!header || std::max(header->width, header->height) > largestIconEdge)
        return 0;
    return std::min(header->width, header->height);
}

/// What an icon is made for, the best first to stand for its application.
enum class Use { PhoneHomeScreen, TabletHomeScreen, Other, SmallPrint };

/// Edges in half points, as 83.5 is one of them. Those from before 2013 come second.
constexpr std::array phoneHomeScreenEdges = {120U, 114U};
constexpr std::array tabletHomeScreenEdges = {152U, 167U, 144U};
/// Notifications, settings, search.
constexpr std::array smallPrintEdges = {40U, 58U, 80U, 100U};

/// The use that a file's name and its edge in pixels tell. A name without a mark of its scale, such
/// as "Icon-120.png", may be of any.
Use useOf(std::string name, unsigned edge) {
    if (!takeOffEnd(name, ".png"))
        takeOffEnd(name, ".PNG");
    const bool isTablets = takeOffEnd(name, "~ipad");
    takeOffEnd(name, "~iphone");
    const unsigned scale = name.ends_with("@2x") ? 2 : name.ends_with("@3x") ? 3 : 0;
    const auto isOneOf = [&](const auto& edges) {
        return std::ranges::any_of(edges, [&](unsigned halfPoints) {
            for (const unsigned tried : {1U, 2U, 3U})
                if ((scale == 0 || scale == tried) && 2 * edge == halfPoints * tried)
                    return true;
            return false;
        });
    };
    if (!isTablets && isOneOf(phoneHomeScreenEdges))
        return Use::PhoneHomeScreen;
    if (isOneOf(tabletHomeScreenEdges))
        return Use::TabletHomeScreen;
    return isOneOf(smallPrintEdges) ? Use::SmallPrint : Use::Other;
}

struct IconFile {
    fs::path path;
    unsigned edge;
    Use use;
    unsigned source;
};

/// The files of one bundle, each found at most once.
class IconSearch {
public:
    explicit IconSearch(const fs::path& folder) { bundle_ = fs::canonical(folder, error_); }

    void add(const std::string& name, unsigned source, std::vector<IconFile>& found) {
        if (error_ || name.empty() || name.find('\0') != std::string::npos)
            return;
        std::error_code error;
        if (!fs::is_regular_file(bundle_ / name, error))
            return;
        fs::path path = fs::canonical(bundle_ / name, error);
        if (error || !isInside(path) || std::ranges::count(seen_, path) > 0)
            return;
        seen_.push_back(path);
        if (const unsigned edge = edgeOf(path); edge > 0)
            found.push_back({std::move(path), edge, useOf(name, edge), source});
    }

private:
    bool isInside(const fs::path& path) const {
        return std::ranges::mismatch(bundle_, path).in1 == bundle_.end();
    }

    std::error_code error_;
    fs::path bundle_;
    std::vector<fs::path> seen_;
};

/// What orders the files, the lowest first: sharp ones before those that would have to be enlarged;
/// of the sharp ones by use, then source, then from small to large; of the others, small print
/// last, from large to small. What only stands in for missing lists comes behind them.
auto rankOf(const IconFile& icon, unsigned pixels) {
    const unsigned substitute = icon.source < listSources ? 0 : icon.source;
    return icon.edge >= pixels ? std::tuple(substitute, false, icon.use, icon.source, icon.edge)
                               : std::tuple(substitute, true, std::max(icon.use, Use::Other),
                                            largestIconEdge - icon.edge, icon.source);
}

} // namespace

std::vector<fs::path> iconFilesOfBundle(const fs::path& folder, const PropertyList& info,
                                        unsigned pixels) {
    std::vector<IconFile> found;
    IconSearch search(folder);
    unsigned source = 0;
    for (const Names& listed : sourcesOf(info)) {
        for (const std::string& name : listed)
            for (const std::string& file : fileNames(name))
                search.add(file, source, found);
        ++source;
    }
    std::ranges::stable_sort(found, {},
                             [pixels](const IconFile& icon) { return rankOf(icon, pixels); });
    std::vector<fs::path> files;
    files.reserve(found.size());
    for (IconFile& icon : found)
        files.push_back(std::move(icon.path));
    return files;
}

} // namespace dubrix
