#include "platform/linux/LinuxMonochromeFilter.h"

#include "formats/ImageDecoding.h"
#include "platform/linux/MonochromeRemap.h"
#include "platform/linux/PaintingWait.h"
#include "platform/linux/PngEncoding.h"

namespace dubrix {

std::optional<std::string> LinuxMonochromeFilter::monochromePng(std::string_view image, float red,
                                                                float green, float blue) const {
    std::optional<std::string> png;
    waitWhilePainting([&] {
        auto pixels = decodeImage(image);
        if (!pixels)
            return;
        MonochromeRemap(red, green, blue).apply(pixels->bytes.get(), pixels->pixelCount());
        png = encodePng(*pixels);
    });
    return png;
}

} // namespace dubrix
