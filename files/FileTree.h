#pragma once

#include "files/Descriptor.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace dubrix {

/// Opens the folder `name` below `parent`; a symbolic link is not followed.
Descriptor openFolderAt(int parent, const std::string& name);

/// The names in an open folder, "." and ".." left out, sorted by bytes; nothing when it cannot be
/// read to its end, so that nobody takes a part for the whole.
std::optional<std::vector<std::string>> namesIn(int folder);

/// The same in the order in which the folder gives them, read through the descriptor itself.
std::optional<std::vector<std::string>> unsortedNamesIn(Descriptor folder);

/// Removes `name` below `parent` with everything in it, links themselves and not what they lead
/// to. Folders closed to their owner are opened first. Goes on after a failure; true when nothing
/// is left.
bool removeTreeAt(int parent, const std::string& name);

/// Whether nothing in a relative path is to be resolved: no empty, "." or ".." component, no slash
/// at an end.
bool isPlainPath(std::string_view path);

/// The size in bytes of every entry below `folder`, recursively and in no order: what the file
/// system gives for the entry itself, folders included. Links below it are measured and not
/// followed. What cannot be read is left out.
std::vector<std::int64_t> sizesBelow(const std::string& folder);

/// A new random identifier in the usual form of 36 upper-case characters.
std::string randomUuid();
/// Whether `name` has that form.
bool isUuid(std::string_view name);

} // namespace dubrix
