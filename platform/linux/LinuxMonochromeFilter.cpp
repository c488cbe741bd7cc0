#include "platform/linux/LinuxMonochromeFilter.h"

#include "platform/linux/MonochromePng.h"
#include "platform/linux/PaintingWait.h"

namespace dubrix {

std::optional<std::string> LinuxMonochromeFilter::monochromePng(std::string_view image, float red,
                                                                float green, float blue) const {
    std::optional<std::string> png;
    waitWhilePainting([&] { png = dubrix::monochromePng(image, red, green, blue); });
    return png;
}

} // namespace dubrix
