#pragma once

#include "formats/PngChunks.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace dubrix {

/// One sub-image of a PNG: the whole image, or one of the seven of an interlaced one.
struct PngPass {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
};

/// The passes that hold pixels, in the order in which they are stored.
std::vector<PngPass> pngPasses(const PngHeader& header);

/// Undoes the filter of one row in place and sets its filter byte, the first, to 0 (none). `above`
/// is the unfiltered row before it in the same pass, zeroes for the first, and of the same size;
/// `pixelSize` is the bytes of a whole pixel. False for a filter that does not exist.
bool unfilterPngRow(std::vector<std::uint8_t>& row, const std::vector<std::uint8_t>& above,
                    std::size_t pixelSize);

/// The Paeth predictor of the PNG standard: of the three neighbours the one nearest to
/// left + above - aboveLeft.
constexpr std::uint8_t paethPredictor(int left, int above, int aboveLeft) {
    const auto magnitude = [](int value) { return value < 0 ? -value : value; };
    const int leftDistance = magnitude(above - aboveLeft);
    const int aboveDistance = magnitude(left - aboveLeft);
    const int cornerDistance = magnitude(left + above - 2 * aboveLeft);
    if (leftDistance <= aboveDistance && leftDistance <= cornerDistance)
        return static_cast<std::uint8_t>(left);
    return static_cast<std::uint8_t>(aboveDistance <= cornerDistance ? above : aboveLeft);
}

} // namespace dubrix
