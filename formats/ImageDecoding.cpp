#include "formats/ImageDecoding.h"

#include "formats/CrushedPng.h"
#include "formats/PngChunks.h"

namespace dubrix {

std::optional<RgbaImage> decodeImage(std::string_view bytes) {
    constexpr std::string_view jpegStart = "\xff\xd8\xff";
    if (bytes.starts_with(jpegStart))
        return decodeJpeg(bytes);
    if (!isCrushedPng(bytes))
        return decodePng(bytes);
    const auto standard = standardPngFromCrushed(bytes);
    return standard ? decodePng(*standard) : std::nullopt;
}

} // namespace dubrix
