#pragma once

#include "formats/images/PngChunks.h"

#include <string>

namespace dubrix::fuzz {

/// The application that is installed on the device before each input.
inline const std::string installedBefore = "com.example.before";

/// As much of an icon as the search for icons reads.
inline std::string iconHead() {
    std::string head(pngSignature);
    appendPngChunk(head, "IHDR", PngHeader{57, 57}.chunkData());
    return head;
}

} // namespace dubrix::fuzz
