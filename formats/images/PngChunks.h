#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace dubrix {

/// The first eight bytes of every PNG stream.
inline constexpr std::string_view pngSignature("\x89PNG\r\n\x1a\n", 8);

/// The most pixels that any image of the program may have, 64 megapixels: 256 MB as 8-bit RGBA.
/// Larger ones count as damaged, so that a header alone cannot exhaust the memory.
inline constexpr std::uint64_t imagePixelLimit = std::uint64_t{1} << 26;

/// Whether an image of this size may be worked on: neither empty nor beyond the limit.
constexpr bool isWorkableImageSize(std::uint64_t width, std::uint64_t height) {
    return width > 0 && height > 0 && width <= imagePixelLimit && height <= imagePixelLimit &&
           width * height <= imagePixelLimit;
}

/// Whether `inflated` bytes can come out of `deflated` ones: deflate gives at most 1032 bytes for
/// one (matches of 258 bytes in two bits), with some slack for the block headers.
constexpr bool isPossibleInflation(std::uint64_t deflated, std::uint64_t inflated) {
    return inflated / 1032 <= deflated + 64;
}

enum class PngColorType : std::uint8_t { Grey = 0, Rgb = 2, Palette = 3, GreyAlpha = 4, Rgba = 6 };

/// Samples of one pixel, as they stand in the stream.
unsigned samplesPerPixel(PngColorType type);

/// The image header of a PNG, chunk "IHDR".
struct PngHeader {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint8_t bitDepth = 8;
    PngColorType colorType = PngColorType::Rgba;
    bool isInterlaced = false;

    /// Nothing for data of the wrong length or with a value that no PNG has.
    static std::optional<PngHeader> fromChunkData(std::string_view data);
    std::string chunkData() const;
};

struct PngChunk {
    std::string_view type;
    std::string_view data;
};

/// Walks the chunks of a PNG stream, whose bytes must outlive it.
class PngChunkReader {
public:
    explicit PngChunkReader(std::string_view stream);

    /// The next chunk; nothing once the stream ends, is cut short or shows a false checksum.
    std::optional<PngChunk> next();

private:
    std::string_view rest_;
};

std::uint32_t bigEndian32(std::string_view fourBytes);

/// Appends one chunk with its length and checksum. `data` is below 2 GB, as the format demands.
void appendPngChunk(std::string& stream, std::string_view type, std::string_view data);

} // namespace dubrix
