#include "platform/linux/MonochromePng.h"

#include "formats/ImageDecoding.h"
#include "platform/linux/MonochromeRemap.h"
#include "platform/linux/PngEncoding.h"

namespace dubrix {

std::optional<std::string> monochromePng(std::string_view image, float red, float green,
                                         float blue) {
    auto pixels = decodeImage(image);
    if (!pixels)
        return std::nullopt;
    MonochromeRemap(red, green, blue).apply(pixels->bytes.get(), pixels->pixelCount());
    return encodePng(*pixels);
}

} // namespace dubrix
