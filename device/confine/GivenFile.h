#pragma once

#include "files/Descriptor.h"

#include <optional>
#include <string>

namespace dubrix {

/// What of the desktop is shown to a command on the device.
enum class Given { Archive, Folder };

/// Opens (O_PATH) the regular, readable file or the folder at `path`, which the person named: links
/// are followed. Nothing when it is not there or of another kind.
Descriptor openNamed(const std::string& path, Given kind);

/// The same for a path that a window asks for, whose word is not the person's: the path is walked
/// part by part and each part opened once, so that nothing can be put in its place in between.
///
/// Absolute paths only, without ".." and without links, but for folders that the system has links
/// to at the root ("/home" on some). A folder must be called "*.app"
/// and must not lie on the device, the folder `device`, which the window may change meanwhile.
Descriptor openAskedFor(const std::string& path, Given kind, const std::string& device);

} // namespace dubrix
