#pragma once

#include "device/archive/ArchivedBundle.h"
#include "device/archive/LinkTargets.h"
#include "device/archive/Progress.h"
#include "files/Result.h"

namespace dubrix {

/// Lays `bundle` out as a new folder below the open folder `staging`, taking the files'
/// bytes from the open file `archive`. Links come after all files, so that nothing is written
/// through one, and folders get their permissions and times last, so that those closed to writing
/// can be filled and filling them is no change. A failure leaves a part behind, which is the
/// caller's to remove. `progress` counts the bytes of files and is told by one thread at a time,
/// not always the same.
Outcome unpackBundle(const ArchivedBundle& bundle, const LinkTargets& links, int archive,
                     int staging, const Progress& progress = {});

} // namespace dubrix
