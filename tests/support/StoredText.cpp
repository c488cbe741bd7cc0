#include "tests/support/StoredText.h"

#include "engine/DXShared.h"
#include "formats/lists/PropertyList.h"

namespace dubrix {

std::string storedText(FileManager& files, SystemLog& log, std::string_view key) {
    const auto value = DXShared(files, log).retrieveValueForKey(key);
    return value ? value->stringValue().value_or("absent") : "absent";
}

void storeText(FileManager& files, SystemLog& log, std::string_view key, const std::string& text) {
    DXShared(files, log).addKey(key, PropertyList::string(text));
}

} // namespace dubrix
