#include "engine/DXShared.h"

#include "engine/Text.h"
#include "formats/lists/PropertyList.h"
#include "platform/FileManager.h"
#include "platform/SystemLog.h"

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

void DXShared::addKey(std::string_view key, const PropertyList& withObject) {
    PropertyList settings = PropertyList::dictionary();
    if (files_.fileExistsAtPath(settingsFilePath)) {
        std::optional<PropertyList> stored = dictionaryWithContentsOfFile(files_, settingsFilePath);
        if (!stored)
            return;
        settings = std::move(*stored);
    }
    log_.log(stringWithFormat("Adding Object: %@ - For Key %@", withObject.description(),
                              std::string(key)));
    settings.setValueForKey(key, withObject);
    if (files_.writeToFile(settingsFilePath, settings.xml()))
        log_.log("Wrote to file successfully");
}

std::optional<PropertyList> DXShared::retrieveValueForKey(std::string_view key) const {
    const auto settings = dictionaryWithContentsOfFile(files_, settingsFilePath);
    return settings ? settings->valueForKey(key) : std::nullopt;
}

} // namespace dubrix
