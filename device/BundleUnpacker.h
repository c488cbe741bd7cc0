#pragma once

#include "device/ArchivedBundle.h"
#include "device/LinkTargets.h"
#include "device/Progress.h"
#include "device/Result.h"
#include "device/StepHook.h"

namespace dubrix {

/// Lays `bundle` out as a new folder below the open folder `staging`, taking the files'
/// bytes from the open file `archive`. Links come after all files, so that nothing is written
/// through one, and folders get their permissions and times last, so that those closed to writing
/// can be filled and filling them is no change. A failure leaves a part behind, which is the
/// caller's to remove. `progress` counts the bytes of files and is told by one thread at a time,
/// not always the same.
Outcome unpackBundle(const ArchivedBundle& bundle, const LinkTargets& links, int archive,
                     int staging, const StepHook& step, const Progress& progress = {});

} // namespace dubrix
