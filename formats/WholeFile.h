#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace dubrix {

/// The bytes of the regular file at `path` (symbolic links followed), or nothing when it cannot be
/// read, is not a regular file, or holds more than `limit` bytes.
std::optional<std::string> readWholeFile(const std::filesystem::path& path,
                                         std::uintmax_t limit = std::uintmax_t{1} << 31);

/// Puts `bytes` at `path` whole or not at all: writes a temporary file in the same folder and
/// renames it over `path` (no flush to the disk: file systems order the data before a rename that
/// replaces, and settings are written on every key stroke). A replaced regular file hands its
/// permission bits on; a new one gets 0644. A symbolic link at `path` is replaced, not followed.
/// False on any failure, with the old file as it was and no temporary file left. A temporary file
/// whose writer was killed is swept by the next write in the folder; writers that work at the same
/// time leave one another's alone.
bool replaceWholeFile(const std::filesystem::path& path, std::string_view bytes);

} // namespace dubrix
