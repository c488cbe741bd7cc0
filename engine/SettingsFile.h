#pragma once

#include "formats/PropertyList.h"

#include <optional>
#include <string>

namespace dubrix {

class FileManager;

/// Where all of the user's choices are kept; it does not depend on the application's identifier.
inline constexpr auto settingsFilePath = "/var/mobile/Library/Preferences/com.q7r2m.dubrix2.plist";

/// The dictionary that the property-list file at `path` holds; nothing when the file is missing,
/// damaged or holds another kind of value.
std::optional<PropertyList> dictionaryWithContentsOfFile(const FileManager& files,
                                                         const std::string& path);

} // namespace dubrix
