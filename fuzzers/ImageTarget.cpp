#include "formats/images/ImageDecoding.h"
#include "formats/images/MonochromeRemap.h"
#include "formats/images/PngEncoding.h"
#include "fuzzers/Target.h"

namespace dubrix::fuzz {

namespace {

bool samePixels(const RgbaImage& left, const RgbaImage& right, std::size_t firstSample) {
    if (left.width != right.width || left.height != right.height)
        return false;
    for (std::size_t at = 0; at < left.pixelCount() * RgbaImage::pixelSize; ++at)
        if (at % RgbaImage::pixelSize >= firstSample && left.bytes[at] != right.bytes[at])
            return false;
    return true;
}

} // namespace

void tryInput(std::string_view bytes) {
    const auto image = decodeImage(bytes);
    const auto tinted = monochromePng(bytes, 0.2F, 0.6F, 0.9F);
    require(tinted.has_value() == image.has_value(), "what can be decoded can be tinted");
    if (!image)
        return;
    const auto again = decodePng(*tinted);
    require(again && samePixels(*image, *again, 3), "a tint keeps the size and the alpha");
    require(monochromePng(*tinted, 0.2F, 0.6F, 0.9F) == tinted,
            "a tint of a tint is the same file");
    const auto encoded = encodePng(*image);
    const auto decoded = encoded ? decodePng(*encoded) : std::nullopt;
    require(decoded && samePixels(*image, *decoded, 0), "an encoded image is the same image");
}

} // namespace dubrix::fuzz
