#pragma once

#include "device/archive/ZipDirectory.h"
#include "files/Result.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace dubrix {

/// The one application bundle in an archive, as it is to be laid out on the disk.
struct ArchivedBundle {
    /// The bundle folder's name, "Name.app".
    std::string folderName;
    mode_t permissions = 0755;
    /// The bundle folder's; see ZipEntry.
    std::optional<std::time_t> modified;
    /// Everything below the bundle folder, names relative to it and without trailing slash,
    /// permissions as they are to be set. Folders hold every one needed, parents before children.
    std::vector<ZipEntry> folders;
    std::vector<ZipEntry> files;
    std::vector<ZipEntry> links;

    /// The file of this name, or null.
    const ZipEntry* file(std::string_view name) const;
    /// Bytes needed on a file system that hands out room in blocks of `block` bytes.
    std::uint64_t roomNeeded(std::uint64_t block) const;
};

/// Finds the bundle Payload/<Name>.app among `entries`. What lies beside it or beside Payload is
/// left out, but the whole archive is refused for an encrypted entry, for a name that is absolute,
/// climbs with "..", is absurdly long or deep, for a name that two entries share (folders may be
/// listed again) and for an entry below a link or a file; the bundle for a device, a pipe or the
/// like in it and for more than `mostZipEntries` with the folders that names only imply.
///
/// Set-id and sticky bits and the right of everybody to write are dropped, and the owner can
/// always read; entries without permissions get 0644, folders 0755.
Result<ArchivedBundle> findBundle(std::vector<ZipEntry> entries);

} // namespace dubrix
