#pragma once

#include "device/archive/Progress.h"
#include "files/Result.h"

#include <string>

namespace dubrix {

/// Packs the open bundle folder `bundle` into the open empty file `archive`, as
/// Payload/`folderName`/ with permissions and links, in the order of the names' bytes. No link is
/// followed on the way. Fails when the bundle holds anything but files, folders and links, and when
/// an Interruption is asked for.
Outcome packBundle(int bundle, const std::string& folderName, int archive,
                   const Progress& progress = {});

} // namespace dubrix
