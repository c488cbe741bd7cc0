#pragma once

#include <cstdint>
#include <string>

namespace dubrix {

// The numbers of the zip format (PKWARE's APPNOTE), and how it writes any.

inline constexpr std::uint32_t localSignature = 0x04034b50;
inline constexpr std::uint32_t entrySignature = 0x02014b50;
inline constexpr std::uint32_t endSignature = 0x06054b50;
inline constexpr std::uint32_t end64Signature = 0x06064b50;
inline constexpr std::uint32_t locator64Signature = 0x07064b50;
/// Bytes of each, without names and fields that follow.
inline constexpr std::size_t localSize = 30;
inline constexpr std::size_t entrySize = 46;
inline constexpr std::size_t endSize = 22;
inline constexpr std::size_t end64Size = 56;
inline constexpr std::size_t locator64Size = 20;
/// Kinds of extra fields: numbers that need 64 bits, times of Unix systems.
inline constexpr std::uint16_t extra64 = 0x0001;
inline constexpr std::uint16_t extraTimes = 0x5455;
/// Stands for a number that does not fit into 32 bits and follows in a field.
inline constexpr std::uint64_t narrow = 0xffffffff;
inline constexpr std::uint16_t utf8Flag = 1 << 11;
inline constexpr unsigned unixHost = 3;

/// The little-endian number of `width` (2, 4 or 8) bytes at `bytes`.
inline std::uint64_t littleEndian(const char* bytes, int width) {
    std::uint64_t value = 0;
    for (int index = width - 1; index >= 0; --index)
        value = value << 8 | static_cast<unsigned char>(bytes[index]);
    return value;
}

/// Appends the lowest `width` bytes of `value`.
inline void appendLittleEndian(std::string& bytes, std::uint64_t value, int width) {
    for (int shift = 0; shift < 8 * width; shift += 8)
        bytes.push_back(static_cast<char>(value >> shift));
}

} // namespace dubrix
