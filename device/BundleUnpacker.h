#pragma once

#include "device/ArchivedBundle.h"
#include "device/LinkTargets.h"
#include "device/Progress.h"
#include "device/Result.h"
#include "device/ZipEntryReader.h"

#include <functional>
#include <string_view>

namespace dubrix {

/// Told the name of each step of an installer's work when it is done.
using StepHook = std::function<void(std::string_view step)>;

/// Lays `bundle` out as a new folder below the open folder `staging`, reading the files' bytes
/// with `reader`. Links come after all files, so that nothing is written through one, and folders
/// get their permissions last, so that those closed to writing can be filled. A failure leaves a
/// part behind, which is the caller's to remove. `progress` counts the bytes of files.
Outcome unpackBundle(const ArchivedBundle& bundle, const LinkTargets& links, ZipEntryReader& reader,
                     int staging, const StepHook& step, const Progress& progress = {});

} // namespace dubrix
