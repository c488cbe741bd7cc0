#include "platform/linux/LinuxApplicationIcons.h"

#include "formats/BundleIcons.h"
#include "formats/WholeFile.h"
#include "platform/linux/ImageDecoding.h"

namespace dubrix {

namespace {

constexpr std::uintmax_t largestIconFile = std::uintmax_t{32} << 20;

} // namespace

std::optional<ApplicationIcons::Picture>
LinuxApplicationIcons::iconOfBundle(const std::string& path, unsigned pixels) const {
    const std::filesystem::path folder = registry_.hostPath(path);
    const auto bytes = readWholeFile(folder / "Info.plist", BundleInfo::largestInfoPlist);
    const auto info = bytes ? PropertyList::parse(*bytes) : std::nullopt;
    if (!info)
        return std::nullopt;
    for (const std::filesystem::path& file : iconFilesOfBundle(folder, *info, pixels)) {
        const auto icon = readWholeFile(file, largestIconFile);
        auto image = icon ? decodeImage(*icon) : std::nullopt;
        if (image)
            return Picture{image->width, image->height, std::move(image->bytes)};
    }
    return std::nullopt;
}

} // namespace dubrix
