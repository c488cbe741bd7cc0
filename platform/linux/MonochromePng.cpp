#include "platform/linux/MonochromePng.h"

#include "formats/ImageDecoding.h"
#include "formats/PngChunks.h"
#include "platform/linux/MonochromeRemap.h"
#include "platform/linux/PngEncoding.h"

#include <algorithm>

namespace dubrix {

namespace {

/// Whether `image`, which decodes, is a standard PNG of at most 8 bits a sample whose values mean
/// nothing but sRGB: without a chunk that gives colours another meaning, turns the picture or adds
/// further ones.
bool isPlainPng(std::string_view image) {
    constexpr std::string_view chunksOfOthers[] = {"gAMA", "cHRM", "iCCP", "cICP", "eXIf", "acTL"};
    PngChunkReader chunks(image);
    const auto first = chunks.next();
    const auto header =
        first && first->type == "IHDR" ? PngHeader::fromChunkData(first->data) : std::nullopt;
    if (!header || header->bitDepth > 8)
        return false;
    while (const auto chunk = chunks.next()) {
        if (chunk->type == "IEND")
            return true;
        if (std::ranges::find(chunksOfOthers, chunk->type) != std::end(chunksOfOthers))
            return false;
    }
    return false;
}

} // namespace

std::optional<std::string> monochromePng(std::string_view image, float red, float green,
                                         float blue) {
    auto pixels = decodeImage(image);
    if (!pixels)
        return std::nullopt;
    const MonochromeRemap remap(red, green, blue);
    if (!remap.holdsShadesOnly(pixels->bytes.get(), pixels->pixelCount()))
        remap.apply(pixels->bytes.get(), pixels->pixelCount());
    else if (isPlainPng(image))
        return std::string(image);
    return encodePng(*pixels);
}

} // namespace dubrix
