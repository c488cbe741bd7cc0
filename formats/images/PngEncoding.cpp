#include "formats/images/PngEncoding.h"

#include "formats/images/IndexedImage.h"
#include "formats/images/PngChunks.h"
#include "formats/packing/Deflate.h"

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

/// The whole stream: `chunks` between the header and the rows, which are left unfiltered.
/// `addRow(line, rows)` appends each one's bytes.
template<typename AddRow>
std::optional<std::string> encoded(const PngHeader& header, std::string_view chunks,
                                   AddRow addRow) {
    const std::size_t rowSize = header.width * std::size_t{samplesPerPixel(header.colorType)};
    std::string rows;
    rows.reserve(header.height * (1 + rowSize));
    for (std::uint32_t line = 0; line < header.height; ++line) {
        rows.push_back('\0'); // names the filter: none
        addRow(line, rows);
    }
    const auto packed = zlibStream(rows);
    if (!packed)
        return std::nullopt;
    std::string stream(pngSignature);
    appendPngChunk(stream, "IHDR", header.chunkData());
    stream += chunks;
    appendPngChunk(stream, "IDAT", *packed);
    appendPngChunk(stream, "IEND", {});
    return stream;
}

const char* text(const std::uint8_t* bytes) {
    return reinterpret_cast<const char*>(bytes);
}

std::optional<std::string> encodeIndexed(const RgbaImage& image, const IndexedImage& indexed) {
    std::string colors;
    std::string alphas;
    for (const auto& pixel : indexed.palette) {
        colors.append(text(pixel.data()), 3);
        alphas.push_back(static_cast<char>(pixel[3]));
    }
    std::string chunks;
    appendPngChunk(chunks, "PLTE", colors);
    if (!isOpaque(image))
        appendPngChunk(chunks, "tRNS", alphas);
    return encoded(
        headerOf(image, PngColorType::Palette), chunks, [&](std::uint32_t line, std::string& rows) {
            rows.append(text(indexed.indices.get() + std::size_t{line} * image.width), image.width);
        });
}

std::optional<std::string> encodeRgba(const RgbaImage& image) {
    return encoded(headerOf(image, PngColorType::Rgba), {},
                   [&](std::uint32_t line, std::string& rows) {
                       rows.append(text(image.row(line)), image.rowSize());
                   });
}

std::optional<std::string> encodeRgb(const RgbaImage& image) {
    return encoded(
        headerOf(image, PngColorType::Rgb), {}, [&](std::uint32_t line, std::string& rows) {
            const std::uint8_t* pixel = image.row(line);
            for (std::uint32_t x = 0; x < image.width; ++x, pixel += RgbaImage::pixelSize)
                rows.append(text(pixel), 3);
        });
}

} // namespace

std::optional<std::string> encodePng(const RgbaImage& image) {
    if (const auto indexed = indexedImage(image))
        return encodeIndexed(image, *indexed);
    return isOpaque(image) ? encodeRgb(image) : encodeRgba(image);
}

} // namespace dubrix
