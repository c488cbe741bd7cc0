#pragma once

#include "device/Progress.h"
#include "device/Result.h"

#include <filesystem>

namespace dubrix {

/// Packs the bundle at `folder` into the archive `file`, as Payload/<Name>.app/ with permissions
/// and links, in the order of the names' bytes. The archive is written beside `file` and renamed:
/// it is there whole or not at all. Fails when the bundle holds anything but files, folders and
/// links.
Outcome exportBundle(const std::filesystem::path& folder, const std::filesystem::path& file,
                     const Progress& progress = {});

} // namespace dubrix
