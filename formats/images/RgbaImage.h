#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

namespace dubrix {

/// Pixels in memory: rows from the top without gaps, four bytes a pixel in the order red, green,
/// blue, alpha; gamma-encoded sRGB, colours not multiplied by alpha.
struct RgbaImage {
    static constexpr std::size_t pixelSize = 4;

    /// Bytes are left unset, so that memory is only taken as rows arrive.
    RgbaImage(std::uint32_t imageWidth, std::uint32_t imageHeight)
        : width(imageWidth),
          height(imageHeight),
          bytes(std::make_unique_for_overwrite<std::uint8_t[]>(pixelCount() * pixelSize)) {}

    std::size_t pixelCount() const { return std::size_t{width} * height; }
    std::size_t rowSize() const { return width * pixelSize; }
    std::uint8_t* row(std::uint32_t line) { return bytes.get() + line * rowSize(); }
    const std::uint8_t* row(std::uint32_t line) const { return bytes.get() + line * rowSize(); }

    std::uint32_t width;
    std::uint32_t height;
    std::unique_ptr<std::uint8_t[]> bytes;
};

} // namespace dubrix
