#include "formats/images/MonochromeRemap.h"

#include "formats/images/ImageDecoding.h"
#include "formats/images/PngChunks.h"
#include "formats/images/PngEncoding.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

namespace dubrix {

namespace {

/// Luminances are summed with this many bits below the step.
constexpr unsigned fractionBits = 16;

/// How far a component may lie from its shade, in steps of 255. What is more than one step makes up
/// for colours that are held in single precision.
constexpr double tolerance = 1 + 1.0 / 1024;

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
            stepBelow[level] = linearFromEncoded((static_cast<double>(level) - tolerance) / 255);
            stepAbove[level] = linearFromEncoded((static_cast<double>(level) + tolerance) / 255);
        }
    }

    /// The share of each component in the luminance, in 1/2^fractionBits of a step.
    std::array<std::uint32_t, 256> red, green, blue;

    /// The linear light from which an encoded value rounds to the level above the index.
    std::array<double, 256> roundsUpAt;

    /// The linear light a step (see `tolerance`) below and above a level.
    std::array<double, 256> stepBelow, stepAbove;
};

const TransferTables& transferTables(std::uint32_t luminanceSteps) {
    static const TransferTables tables(luminanceSteps);
    return tables;
}

/// Whether `image`, which decodes, is a standard PNG of at most 8 bits a sample whose values mean
/// nothing but sRGB: without a chunk that gives colours another meaning, turns the picture or adds
/// further ones.
bool isPlainPng(std::string_view image) {
    constexpr std::string_view chunksOfOthers[] = {"gAMA", "cHRM", "iCCP", "cICP", "eXIf", "acTL"};
    PngChunkReader chunks(image);
    const auto first = chunks.next();
    const auto header =
        first && first->type == "IHDR" ? PngHeader::fromChunkData(first->data) : std::nullopt;
    if (!header || header->bitDepth > 8)
        return false;
    while (const auto chunk = chunks.next()) {
        if (chunk->type == "IEND")
            return true;
        if (std::ranges::find(chunksOfOthers, chunk->type) != std::end(chunksOfOthers))
            return false;
    }
    return false;
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
    fillReaches(component, linear);
}

void MonochromeRemap::fillReaches(std::size_t component, double linear) {
    const TransferTables& tables = transferTables(luminanceSteps);
    for (std::size_t level = 0; level < 256; ++level) {
        Reach& reach = reaches_[component][level];
        // A component that the colour lacks is dark in every shade.
        if (linear <= 0)
            reach = tables.stepBelow[level] <= 0 ? Reach{0, 1} : Reach{1, 0};
        else
            reach = {static_cast<float>(std::clamp(tables.stepBelow[level] / linear, 0.0, 2.0)),
                     static_cast<float>(std::min(tables.stepAbove[level] / linear, 1.0))};
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

bool MonochromeRemap::isShade(const std::uint8_t* pixel) const {
    const Reach& red = reaches_[0][pixel[0]];
    const Reach& green = reaches_[1][pixel[1]];
    const Reach& blue = reaches_[2][pixel[2]];
    return std::max({red.least, green.least, blue.least}) <=
           std::min({red.most, green.most, blue.most});
}

bool MonochromeRemap::holdsShadesOnly(const std::uint8_t* rgba, std::size_t pixelCount) const {
    constexpr std::size_t pixelSize = 4;
    const std::uint8_t* const end = rgba + pixelCount * pixelSize;
    for (const std::uint8_t* pixel = rgba; pixel != end; pixel += pixelSize)
        if (pixel[3] != 0 && !isShade(pixel))
            return false;
    return true;
}

std::optional<std::string> monochromePng(std::string_view image, float red, float green,
                                         float blue) {
    auto pixels = decodeImage(image);
    if (!pixels)
        return std::nullopt;
    const MonochromeRemap remap(red, green, blue);
    if (!remap.holdsShadesOnly(pixels->bytes.get(), pixels->pixelCount()))
        remap.apply(pixels->bytes.get(), pixels->pixelCount());
    else if (isPlainPng(image))
        return std::string(image);
    return encodePng(*pixels);
}

} // namespace dubrix
