#pragma once

#include "tests/support/Deflated.h"

#include <cstdint>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <vector>

namespace dubrix {

/// One entry of a test's archive, true or lying.
struct ZipItem {
    std::string name;
    std::string data;
    mode_t mode = S_IFREG | 0644;
    /// 0 stored, 8 deflated; other numbers store and pretend.
    unsigned method = 0;
    unsigned flags = 0;
    /// 3 is Unix, 0 gives no mode.
    unsigned host = 3;
    std::optional<std::uint64_t> claimedSize{};
    std::uint32_t crcError = 0;
    /// The date in the upper half and the time in the lower, and fields, of the central directory.
    std::uint32_t dateAndTime = 0;
    std::string extra{};
};

inline std::string bytesOf(std::uint64_t value, int width) {
    std::string bytes;
    for (; width > 0; --width, value >>= 8)
        bytes += static_cast<char>(value & 0xff);
    return bytes;
}

/// The bytes of an archive in two parts, between which the last item's data goes on for `hole`
/// bytes of zeros that a test can leave out of the file. Sizes and checksums stand in the central
/// directory only, sizes in their 64-bit form when there is a hole.
struct ZipBytes {
    std::string head;
    std::string tail;
};

inline ZipBytes zipWithHole(const std::vector<ZipItem>& items, std::uint64_t hole) {
    ZipBytes zip;
    std::string directory;
    for (const ZipItem& item : items) {
        const std::string packed = item.method == 8 ? deflated(item.data) : item.data;
        const bool isLarge = hole > 0 && &item == &items.back();
        const std::uint64_t more = isLarge ? hole : 0;
        const std::uint64_t size = item.claimedSize.value_or(item.data.size() + more);
        const auto crc = ::crc32(0, reinterpret_cast<const Bytef*>(item.data.data()),
                                 static_cast<uInt>(item.data.size()));
        const std::string extra =
            (isLarge ? bytesOf(1, 2) + bytesOf(16, 2) + bytesOf(size, 8) + bytesOf(size, 8) : "") +
            item.extra;
        directory +=
            "PK\1\2" + bytesOf(20, 1) + bytesOf(item.host, 1) + bytesOf(20, 2) +
            bytesOf(item.flags, 2) + bytesOf(item.method, 2) + bytesOf(item.dateAndTime, 4) +
            bytesOf(crc ^ item.crcError, 4) + bytesOf(isLarge ? 0xffffffff : packed.size(), 4) +
            bytesOf(isLarge ? 0xffffffff : size, 4) + bytesOf(item.name.size(), 2) +
            bytesOf(extra.size(), 2) + bytesOf(0, 6) + bytesOf(std::uint64_t{item.mode} << 16, 4) +
            bytesOf(zip.head.size(), 4) + item.name + extra;
        zip.head += "PK\3\4" + bytesOf(20, 2) + bytesOf(item.flags | 8, 2) +
                    bytesOf(item.method, 2) + bytesOf(0, 16) + bytesOf(item.name.size(), 2) +
                    bytesOf(0, 2) + item.name + packed;
    }
    const std::uint64_t start = zip.head.size() + hole;
    const std::uint64_t end = start + directory.size();
    zip.tail = directory;
    if (hole > 0)
        zip.tail += "PK\6\6" + bytesOf(44, 8) + bytesOf(45, 2) + bytesOf(45, 2) + bytesOf(0, 8) +
                    bytesOf(items.size(), 8) + bytesOf(items.size(), 8) +
                    bytesOf(directory.size(), 8) + bytesOf(start, 8) + "PK\6\7" + bytesOf(0, 4) +
                    bytesOf(end, 8) + bytesOf(1, 4);
    zip.tail += "PK\5\6" + bytesOf(0, 4) + bytesOf(items.size(), 2) + bytesOf(items.size(), 2) +
                bytesOf(directory.size(), 4) + bytesOf(hole > 0 ? 0xffffffff : start, 4) +
                bytesOf(0, 2);
    return zip;
}

inline std::string zipOf(const std::vector<ZipItem>& items) {
    const ZipBytes zip = zipWithHole(items, 0);
    return zip.head + zip.tail;
}

} // namespace dubrix
