#include "formats/images/ImageDecoding.h"
#include "formats/images/PngChunks.h"

#include <algorithm>

namespace dubrix {

// A crushed PNG differs from the standard in that its data is deflated without the zlib frame (bit
// 0x10000000 of the CgBI chunk's word), colours stand as blue, green, red, and colours are
// premultiplied by alpha as (c * a + 127) / 255. They are divided again here, rounded to nearest;
// invisible pixels become transparent black. The lowest bits of the word tell of alpha: 6 means
// that it is to be ignored, and all pixels come out opaque. Only images of 8 bits a sample without
// a palette are known to exist; others give nothing. All other chunks are dropped, with them colour
// profiles: the values are sRGB.

namespace {

constexpr std::uint32_t rawDeflateBit = 0x10000000;
constexpr std::uint32_t alphaBits = 0xf;
constexpr std::uint32_t alphaIsIgnored = 6;

/// What frames a deflated stream for zlib: a header for the largest window, and room for the
/// checksum, which nobody knows.
constexpr std::string_view zlibHeader("\x78\x01", 2);
constexpr std::string_view unknownChecksum("\0\0\0\0", 4);

struct FramedPng {
    /// The same data with the rows as they are, filtered, in a stream that any decoder reads.
    std::string stream;
    bool ignoresAlpha = false;
};

std::optional<FramedPng> framedPng(std::string_view bytes) {
    PngChunkReader reader(bytes);
    const auto first = reader.next();
    const auto second = reader.next();
    if (!second || first->type != "CgBI" || first->data.size() != 4 || second->type != "IHDR")
        return std::nullopt;
    const auto header = PngHeader::fromChunkData(second->data);
    if (!header || header->bitDepth != 8 || header->colorType == PngColorType::Palette)
        return std::nullopt;
    const std::uint32_t flags = bigEndian32(first->data);
    const bool isRaw = (flags & rawDeflateBit) != 0;
    FramedPng framed{std::string(pngSignature), (flags & alphaBits) == alphaIsIgnored};
    framed.stream.reserve(bytes.size() + 64);
    appendPngChunk(framed.stream, "IHDR", second->data);
    if (isRaw)
        appendPngChunk(framed.stream, "IDAT", zlibHeader);
    while (const auto chunk = reader.next()) {
        if (chunk->type == "IDAT")
            appendPngChunk(framed.stream, "IDAT", chunk->data);
        if (chunk->type != "IEND")
            continue;
        if (isRaw)
            appendPngChunk(framed.stream, "IDAT", unknownChecksum);
        appendPngChunk(framed.stream, "IEND", {});
        return framed;
    }
    return std::nullopt;
}

std::uint8_t unassociated(std::uint8_t color, std::uint8_t alpha) {
    const unsigned divided = (color * 255U + alpha / 2U) / alpha;
    return static_cast<std::uint8_t>(std::min(divided, 255U));
}

/// Turns pixels as they stand in a crushed PNG into those that they mean.
void standardize(RgbaImage& image, bool ignoresAlpha) {
    std::uint8_t* const end = image.bytes.get() + image.pixelCount() * RgbaImage::pixelSize;
    for (std::uint8_t* pixel = image.bytes.get(); pixel != end; pixel += RgbaImage::pixelSize) {
        std::swap(pixel[0], pixel[2]);
        const std::uint8_t alpha = pixel[3];
        if (ignoresAlpha)
            pixel[3] = 255;
        else if (alpha == 0)
            std::fill_n(pixel, 3, std::uint8_t{0});
        else if (alpha < 255)
            std::transform(pixel, pixel + 3, pixel,
                           [alpha](std::uint8_t color) { return unassociated(color, alpha); });
    }
}

} // namespace

bool isCrushedPng(std::string_view bytes) {
    return bytes.starts_with(pngSignature) && bytes.size() >= 16 && bytes.substr(12, 4) == "CgBI";
}

std::optional<RgbaImage> decodeCrushedPng(std::string_view bytes) {
    const auto framed = framedPng(bytes);
    auto image = framed ? decodePng(framed->stream, DataChecksum::Ignored) : std::nullopt;
    if (image)
        standardize(*image, framed->ignoresAlpha);
    return image;
}

std::optional<RgbaImage> decodeImage(std::string_view bytes) {
    constexpr std::string_view jpegStart = "\xff\xd8\xff";
    if (bytes.starts_with(jpegStart))
        return decodeJpeg(bytes);
    return isCrushedPng(bytes) ? decodeCrushedPng(bytes) : decodePng(bytes);
}

} // namespace dubrix
