#pragma once

#include "files/Result.h"

#include <cstdint>
#include <ctime>
#include <optional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace dubrix {

/// One entry as the archive's central directory describes it.
struct ZipEntry {
    enum class Kind { File, Folder, Link, Special };

    /// The bytes as they stand in the archive, in whatever encoding: they are never converted, so
    /// no locale can lose or change a name.
    std::string name;
    Kind kind = Kind::File;
    /// Unix permission bits; 0 when the archive gives none.
    mode_t permissions = 0;
    bool encrypted = false;
    /// 0 stored, 8 deflated.
    std::uint16_t method = 0;
    std::uint32_t crc = 0;
    /// Bytes in the archive and bytes unpacked.
    std::uint64_t packedSize = 0;
    std::uint64_t size = 0;
    /// Where the local header begins in the file.
    std::uint64_t headerOffset = 0;
    /// When the entry was last changed, in seconds of Unix time: the time stamp of Unix systems
    /// where there is one, else the date and time to two seconds, taken as local. Nothing when
    /// neither is a time.
    std::optional<std::time_t> modified;
};

/// No archive holds more files, folders and links than this.
inline constexpr std::uint64_t mostZipEntries = 100'000;

/// Reads the central directory of the zip archive open for reading as `archive`, 64-bit form
/// included. The local headers are not asked: most archives leave the sizes there at zero. Fails
/// for anything that is not an archive, is cut short (begins like one and lacks the end, where the
/// directory stands), is damaged, is spread over several volumes, has more than `mostZipEntries` or
/// claims sizes that its bytes cannot hold.
Result<std::vector<ZipEntry>> readZipDirectory(int archive);

} // namespace dubrix
