#include "platform/linux/PngEncoding.h"

#include "formats/PngWriter.h"

#include <algorithm>
#include <vector>

namespace dubrix {

namespace {

constexpr std::uint8_t noFilter = 0;

bool isOpaque(const RgbaImage& image) {
    std::uint8_t alphas = 255;
    const std::uint8_t* const bytes = image.bytes.get();
    for (std::size_t pixel = 0; pixel < image.pixelCount(); ++pixel)
        alphas &= bytes[pixel * RgbaImage::pixelSize + 3];
    return alphas == 255;
}

void copyWithoutAlpha(const std::uint8_t* rgba, std::uint32_t pixels, std::uint8_t* rgb) {
    for (std::size_t pixel = 0; pixel < pixels; ++pixel) {
        for (std::size_t sample = 0; sample < 3; ++sample)
            rgb[pixel * 3 + sample] = rgba[pixel * RgbaImage::pixelSize + sample];
    }
}

} // namespace

std::optional<std::string> encodePng(const RgbaImage& image) {
    const bool hasAlpha = !isOpaque(image);
    PngHeader header{image.width, image.height};
    header.colorType = hasAlpha ? PngColorType::rgba : PngColorType::rgb;
    PngWriter writer(header, PngWriter::Packing::fast);
    std::vector<std::uint8_t> row(1 + image.width * std::size_t{samplesPerPixel(header.colorType)});
    row[0] = noFilter;
    for (std::uint32_t line = 0; line < image.height; ++line) {
        if (hasAlpha)
            std::copy_n(image.row(line), image.rowSize(), row.begin() + 1);
        else
            copyWithoutAlpha(image.row(line), image.width, row.data() + 1);
        writer.addRow({reinterpret_cast<const char*>(row.data()), row.size()});
    }
    return writer.finish();
}

} // namespace dubrix
