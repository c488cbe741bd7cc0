#include "device/BundleIcon.h"

#include "device/BundleInfo.h"
#include "formats/BundleIcons.h"
#include "formats/ImageDecoding.h"
#include "formats/WholeFile.h"

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
