#pragma once

#include "files/ReplacementFile.h"

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

/// Puts `bytes` at `path` whole or not at all. A replaced regular file hands its permission bits
/// on; a new one gets 0644. A symbolic link at `path` is replaced, not followed. False on any
/// failure, with the old file as it was. Writers that work at the same time leave one another
/// alone; what one that was killed has left is swept by the next for the same path (see
/// ReplacementFile).
///
/// With Durability::PowerCut a cut of power may undo the last writes, but tears none.
/// Durability::Process spares the wait for the disk, for files that are made again anyway.
bool replaceWholeFile(const std::filesystem::path& path, std::string_view bytes,
                      Durability durability = Durability::PowerCut);

/// Writes into a file that is there, such as one of the kernel's.
bool writeInto(const std::string& path, std::string_view bytes);

} // namespace dubrix
