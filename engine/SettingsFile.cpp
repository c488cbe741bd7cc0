#include "engine/SettingsFile.h"

#include "platform/FileManager.h"

namespace dubrix {

std::optional<PropertyList> dictionaryWithContentsOfFile(const FileManager& files,
                                                         const std::string& path) {
    const std::optional<std::string> bytes = files.contentsAtPath(path);
    if (!bytes)
        return std::nullopt;
    std::optional<PropertyList> value = PropertyList::parse(*bytes);
    if (!value || !value->isDictionary())
        return std::nullopt;
    return value;
}

} // namespace dubrix
