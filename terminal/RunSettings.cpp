#include "terminal/RunSettings.h"

#include "engine/DXShared.h"
#include "formats/lists/PropertyList.h"

namespace dubrix {

std::optional<std::string> RunSettings::contentsAtPath(const std::string& path) const {
    if (path != settingsFilePath)
        return files_.contentsAtPath(path);
    PropertyList settings =
        dictionaryWithContentsOfFile(files_, settingsFilePath).value_or(PropertyList::dictionary());
    const auto set = [&settings](const char* key, const PropertyList& value) {
        settings.setValueForKey(key, value);
    };
    if (values.identifier)
        set("bundleID", PropertyList::string(*values.identifier));
    if (values.isPlain || values.name)
        set("customNameToggle", PropertyList::boolean(values.name.has_value()));
    if (values.name)
        set("customText", PropertyList::string(numbered(*values.name)));
    if (values.isPlain || values.color)
        set("customColorToggle", PropertyList::boolean(values.color.has_value()));
    if (values.color) {
        set("Red", PropertyList::real((*values.color)[0]));
        set("Green", PropertyList::real((*values.color)[1]));
        set("Blue", PropertyList::real((*values.color)[2]));
    }
    return settings.xml();
}

std::string RunSettings::numbered(std::string name) const {
    constexpr std::string_view place = "{n}";
    const std::string& asked = workspace_.lastAsked();
    const std::string source = values.identifier.value_or("");
    const std::string number = asked.starts_with(source) ? asked.substr(source.size()) : "";
    for (std::size_t at = 0; (at = name.find(place, at)) != std::string::npos;) {
        name.replace(at, place.size(), number);
        at += number.size();
    }
    return name;
}

} // namespace dubrix
