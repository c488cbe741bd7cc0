#include "platform/linux/PngEncoding.h"

#include "formats/PngWriter.h"
#include "platform/linux/IndexedImage.h"

#include <algorithm>
#include <vector>

namespace dubrix {

namespace {

bool isOpaque(const RgbaImage& image) {
    std::uint8_t alphas = 255;
    const std::uint8_t* const bytes = image.bytes.get();
    for (std::size_t pixel = 0; pixel < image.pixelCount(); ++pixel)
        alphas &= bytes[pixel * RgbaImage::pixelSize + 3];
    return alphas == 255;
}

PngHeader headerOf(const RgbaImage& image, PngColorType type) {
    PngHeader header{image.width, image.height};
    header.colorType = type;
    return header;
}

/// Adds all rows unfiltered; `fillRow(line, target)` puts each one's bytes at `target`.
template<typename FillRow>
void addRows(PngWriter& writer, const PngHeader& header, FillRow fillRow) {
    // The first byte of a row names its filter, 0 for none.
    std::vector<std::uint8_t> row(1 +
                                  header.width * std::size_t{samplesPerPixel(header.colorType)});
    for (std::uint32_t line = 0; line < header.height; ++line) {
        fillRow(line, row.data() + 1);
        writer.addRow({reinterpret_cast<const char*>(row.data()), row.size()});
    }
}

std::optional<std::string> encodeIndexed(const RgbaImage& image, const IndexedImage& indexed) {
    std::string colors;
    std::string alphas;
    for (const auto& pixel : indexed.palette) {
        colors.append(reinterpret_cast<const char*>(pixel.data()), 3);
        alphas.push_back(static_cast<char>(pixel[3]));
    }
    const PngHeader header = headerOf(image, PngColorType::palette);
    PngWriter writer(header, PngWriter::Packing::fast);
    writer.addChunk("PLTE", colors);
    if (!isOpaque(image))
        writer.addChunk("tRNS", alphas);
    addRows(writer, header, [&](std::uint32_t line, std::uint8_t* target) {
        std::copy_n(indexed.indices.get() + std::size_t{line} * image.width, image.width, target);
    });
    return writer.finish();
}

std::optional<std::string> encodeRgba(const RgbaImage& image) {
    const PngHeader header = headerOf(image, PngColorType::rgba);
    PngWriter writer(header, PngWriter::Packing::fast);
    addRows(writer, header, [&](std::uint32_t line, std::uint8_t* target) {
        std::copy_n(image.row(line), image.rowSize(), target);
    });
    return writer.finish();
}

std::optional<std::string> encodeRgb(const RgbaImage& image) {
    const PngHeader header = headerOf(image, PngColorType::rgb);
    PngWriter writer(header, PngWriter::Packing::fast);
    addRows(writer, header, [&](std::uint32_t line, std::uint8_t* target) {
        const std::uint8_t* pixel = image.row(line);
        for (std::uint32_t x = 0; x < image.width; ++x, pixel += RgbaImage::pixelSize)
            target = std::copy_n(pixel, 3, target);
    });
    return writer.finish();
}

} // namespace

std::optional<std::string> encodePng(const RgbaImage& image) {
    if (const auto indexed = indexedImage(image))
        return encodeIndexed(image, *indexed);
    return isOpaque(image) ? encodeRgb(image) : encodeRgba(image);
}

} // namespace dubrix
