#include "formats/PngRows.h"

#include <array>

namespace dubrix {

namespace {

enum Filter : std::uint8_t { none, sub, up, average, paeth };

/// Where the pixels of each interlacing pass lie: the first one and the steps between them.
struct PassGrid {
    std::uint32_t left, top, stepX, stepY;
};

constexpr std::array<PassGrid, 7> interlacing = {{{0, 0, 8, 8},
                                                  {4, 0, 8, 8},
                                                  {0, 4, 4, 8},
                                                  {2, 0, 4, 4},
                                                  {0, 2, 2, 4},
                                                  {1, 0, 2, 2},
                                                  {0, 1, 1, 2}}};

std::uint32_t steps(std::uint32_t size, std::uint32_t start, std::uint32_t step) {
    return size <= start ? 0 : (size - start - 1) / step + 1;
}

/// Adds to each byte what `predict(left, above, aboveLeft)` says of it.
template<typename Predict>
void addPrediction(std::vector<std::uint8_t>& row, const std::vector<std::uint8_t>& above,
                   std::size_t pixelSize, Predict predict) {
    for (std::size_t index = 1; index < row.size(); ++index) {
        const bool isFirst = index <= pixelSize;
        const int left = isFirst ? 0 : row[index - pixelSize];
        const int aboveLeft = isFirst ? 0 : above[index - pixelSize];
        row[index] = static_cast<std::uint8_t>(row[index] + predict(left, above[index], aboveLeft));
    }
}

} // namespace

std::vector<PngPass> pngPasses(const PngHeader& header) {
    if (!header.isInterlaced)
        return {{header.width, header.height}};
    std::vector<PngPass> passes;
    for (const PassGrid& grid : interlacing) {
        const PngPass pass{steps(header.width, grid.left, grid.stepX),
                           steps(header.height, grid.top, grid.stepY)};
        if (pass.width > 0 && pass.height > 0)
            passes.push_back(pass);
    }
    return passes;
}

bool unfilterPngRow(std::vector<std::uint8_t>& row, const std::vector<std::uint8_t>& above,
                    std::size_t pixelSize) {
    switch (row[0]) {
    case none:
        break;
    case sub:
        addPrediction(row, above, pixelSize, [](int left, int, int) { return left; });
        break;
    case up:
        addPrediction(row, above, pixelSize, [](int, int over, int) { return over; });
        break;
    case average:
        addPrediction(row, above, pixelSize,
                      [](int left, int over, int) { return (left + over) / 2; });
        break;
    case paeth:
        addPrediction(row, above, pixelSize, paethPredictor);
        break;
    default:
        return false;
    }
    row[0] = none;
    return true;
}

} // namespace dubrix
