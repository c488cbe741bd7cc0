#include "platform/posix/PosixMonochromeFilter.h"

#include "formats/images/MonochromeRemap.h"

namespace dubrix {

std::optional<std::string> PosixMonochromeFilter::monochromePng(std::string_view image, float red,
                                                                float green, float blue) const {
    return dubrix::monochromePng(image, red, green, blue);
}

} // namespace dubrix
