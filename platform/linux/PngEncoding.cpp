#include "platform/linux/PngEncoding.h"

#include "formats/PngWriter.h"

#include <algorithm>
#include <vector>

namespace dubrix {

namespace {

constexpr std::uint8_t upFilter = 2;

bool isOpaque(const RgbaImage& image) {
    std::uint8_t alphas = 255;
    const std::uint8_t* const bytes = image.bytes.get();
    for (std::size_t pixel = 0; pixel < image.pixelCount(); ++pixel)
        alphas &= bytes[pixel * RgbaImage::pixelSize + 3];
    return alphas == 255;
}

void dropAlpha(const std::uint8_t* rgba, std::vector<std::uint8_t>& rgb) {
    for (std::size_t pixel = 0; pixel < rgb.size() / 3; ++pixel) {
        for (std::size_t sample = 0; sample < 3; ++sample)
            rgb[pixel * 3 + sample] = rgba[pixel * RgbaImage::pixelSize + sample];
    }
}

/// Writes the filter byte and the difference of each byte to the one above it.
void filterRow(const std::uint8_t* row, const std::uint8_t* above,
               std::vector<std::uint8_t>& filtered) {
    filtered[0] = upFilter;
    std::uint8_t* const target = filtered.data() + 1;
    for (std::size_t index = 0; index + 1 < filtered.size(); ++index)
        target[index] = static_cast<std::uint8_t>(row[index] - above[index]);
}

} // namespace

std::optional<std::string> encodePng(const RgbaImage& image) {
    const bool hasAlpha = !isOpaque(image);
    PngHeader header{image.width, image.height};
    header.colorType = hasAlpha ? PngColorType::rgba : PngColorType::rgb;
    const std::size_t rowSize = image.width * std::size_t{samplesPerPixel(header.colorType)};
    std::vector<std::uint8_t> above(rowSize);
    std::vector<std::uint8_t> row(rowSize);
    std::vector<std::uint8_t> filtered(rowSize + 1);
    PngWriter writer(header, PngWriter::Packing::fast);
    for (std::uint32_t line = 0; line < image.height; ++line) {
        if (hasAlpha)
            std::copy_n(image.row(line), rowSize, row.begin());
        else
            dropAlpha(image.row(line), row);
        filterRow(row.data(), above.data(), filtered);
        writer.addRow({reinterpret_cast<const char*>(filtered.data()), filtered.size()});
        row.swap(above);
    }
    return writer.finish();
}

} // namespace dubrix
