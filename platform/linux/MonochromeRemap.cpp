#include "platform/linux/MonochromeRemap.h"

#include <bit>
#include <cmath>
#include <cstring>

namespace dubrix {

namespace {

/// Luminances are summed with this many bits below the step.
constexpr unsigned fractionBits = 16;

double linearFromEncoded(double encoded) {
    return encoded <= 0.04045 ? encoded / 12.92 : std::pow((encoded + 0.055) / 1.055, 2.4);
}

/// What no colour changes, computed once.
struct TransferTables {
    explicit TransferTables(std::uint32_t luminanceSteps) {
        const double whole = std::ldexp(luminanceSteps, fractionBits);
        for (std::size_t level = 0; level < 256; ++level) {
            const double linear = linearFromEncoded(static_cast<double>(level) / 255);
            red[level] = static_cast<std::uint32_t>(std::lround(0.2126 * linear * whole));
            green[level] = static_cast<std::uint32_t>(std::lround(0.7152 * linear * whole));
            blue[level] = static_cast<std::uint32_t>(std::lround(0.0722 * linear * whole));
            roundsUpAt[level] = linearFromEncoded((static_cast<double>(level) + 0.5) / 255);
        }
    }

    /// The share of each component in the luminance, in 1/2^fractionBits of a step.
    std::array<std::uint32_t, 256> red, green, blue;

    /// The linear light from which an encoded value rounds to the level above the index.
    std::array<double, 256> roundsUpAt;
};

const TransferTables& transferTables(std::uint32_t luminanceSteps) {
    static const TransferTables tables(luminanceSteps);
    return tables;
}

} // namespace

MonochromeRemap::MonochromeRemap(float red, float green, float blue) {
    fillComponent(0, red);
    fillComponent(1, green);
    fillComponent(2, blue);
}

void MonochromeRemap::fillComponent(std::size_t component, float value) {
    // Written so that not-a-number fails the first comparison.
    const double clamped = value > 0 ? std::fmin(value, 1.0) : 0.0;
    const double linear = linearFromEncoded(clamped);
    const TransferTables& tables = transferTables(luminanceSteps);
    // Shades only rise with the luminance, so one walk finds every level without a power function.
    std::size_t level = 0;
    for (std::uint32_t step = 0; step <= luminanceSteps; ++step) {
        const double light = linear * step / luminanceSteps;
        while (level < 255 && light >= tables.roundsUpAt[level])
            ++level;
        shades_[step][component] = static_cast<std::uint8_t>(level);
    }
}

void MonochromeRemap::apply(std::uint8_t* rgba, std::size_t pixelCount) const {
    using Pixel = std::array<std::uint8_t, 4>;
    constexpr auto alphaMask = std::bit_cast<std::uint32_t>(Pixel{0, 0, 0, 255});
    constexpr std::uint32_t half = 1U << (fractionBits - 1);
    const TransferTables& tables = transferTables(luminanceSteps);
    std::uint8_t* const end = rgba + pixelCount * sizeof(Pixel);
    for (std::uint8_t* pixel = rgba; pixel != end; pixel += sizeof(Pixel)) {
        const std::uint32_t luminance =
            tables.red[pixel[0]] + tables.green[pixel[1]] + tables.blue[pixel[2]] + half;
        std::uint32_t whole = 0;
        std::memcpy(&whole, pixel, sizeof whole);
        const auto shade = std::bit_cast<std::uint32_t>(shades_[luminance >> fractionBits]);
        whole = (whole & alphaMask) | shade;
        std::memcpy(pixel, &whole, sizeof whole);
    }
}

} // namespace dubrix
