#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace dubrix {

class FileManager;
class PropertyList;
class SystemLog;

/// Where all of the user's choices are kept; it does not depend on the application's identifier.
inline constexpr auto settingsFilePath = "/var/mobile/Library/Preferences/com.q7r2m.dubrix2.plist";

/// The dictionary that the property-list file at `path` holds; nothing when the file is missing,
/// damaged or holds another kind of value.
std::optional<PropertyList> dictionaryWithContentsOfFile(const FileManager& files,
                                                         const std::string& path);

/// The settings store: the only writer of the settings file. It keeps nothing in memory; every call
/// reads the file afresh, so two stores always agree. Main thread only; other processes are not
/// coordinated with, but never see a half-written file.
class DXShared {
public:
    DXShared(FileManager& files, SystemLog& log) : files_(files), log_(log) {}

    /// Stores one value, keeping all others. The file is created by the first call. A file that
    /// does not hold a dictionary is left as it is and the value dropped without a log line; so is
    /// a value that cannot be written, without the second log line.
    void addKey(std::string_view key, const PropertyList& withObject);

    /// The value stored for `key`; nothing when it, or a readable file, is missing.
    std::optional<PropertyList> retrieveValueForKey(std::string_view key) const;

private:
    FileManager& files_;
    SystemLog& log_;
};

} // namespace dubrix
