#include "device/registry/BundleIcon.h"

#include "device/registry/BundleInfo.h"
#include "files/WholeFile.h"
#include "formats/images/BundleIcons.h"
#include "formats/images/ImageDecoding.h"
#include "formats/lists/PropertyList.h"

namespace dubrix {

namespace {

constexpr std::uintmax_t largestIconFile = std::uintmax_t{32} << 20;

} // namespace

std::optional<RgbaImage> iconOfBundle(const std::filesystem::path& folder, unsigned pixels) {
    const auto bytes = readWholeFile(folder / "Info.plist", BundleInfo::largestInfoPlist);
    const auto info = bytes ? PropertyList::parse(*bytes) : std::nullopt;
    if (!info)
        return std::nullopt;
    for (const std::filesystem::path& file : iconFilesOfBundle(folder, *info, pixels)) {
        const auto icon = readWholeFile(file, largestIconFile);
        if (auto image = icon ? decodeImage(*icon) : std::nullopt)
            return image;
    }
    return std::nullopt;
}

} // namespace dubrix
