#pragma once

#include "files/Result.h"

#include <functional>
#include <string>
#include <vector>

namespace dubrix {

/// Packs files, folders with all that is below them and links, as they are named in the open folder
/// `folder`, into the open empty file `archive`: nothing is compressed, permissions, times to the
/// second and the links' texts are kept, and names are bytes, marked as UTF-8 where they are it.
/// The entries are in the order in which the system lists them, folders before what they hold;
/// larger files and archives than 4 GiB, and more than 65,534 entries, take the 64-bit form. Files
/// are packed on as many processors as are worth it (see workOnFiles); no link is followed.
///
/// Fails for anything else than files, folders and links and for what changes meanwhile. `added`,
/// if any, is told the name of each entry when all are packed.
Outcome packStored(int folder, const std::vector<std::string>& names, int archive,
                   const std::function<void(const std::string& name)>& added = {});

} // namespace dubrix
