#include "device/BundleInfo.h"

#include "formats/WholeFile.h"

namespace dubrix {

namespace {

std::optional<std::string> textFor(const PropertyList& dictionary, std::string_view key) {
    const std::optional<PropertyList> value = dictionary.valueForKey(key);
    return value ? value->stringValue() : std::nullopt;
}

/// The strings of an array; nothing of any other value.
std::vector<std::string> textsOf(const std::optional<PropertyList>& array) {
    std::vector<std::string> texts;
    if (!array || array->type() != PropertyList::Type::Array)
        return texts;
    for (std::size_t index = 0; index < array->count(); ++index)
        if (const auto text = array->valueAt(index)->stringValue())
            texts.push_back(*text);
    return texts;
}

std::vector<std::string> schemesOf(const std::optional<PropertyList>& types) {
    std::vector<std::string> schemes;
    if (!types || types->type() != PropertyList::Type::Array)
        return schemes;
    for (std::size_t index = 0; index < types->count(); ++index)
        for (std::string& scheme :
             textsOf(types->valueAt(index)->valueForKey("CFBundleURLSchemes")))
            schemes.push_back(std::move(scheme));
    return schemes;
}

} // namespace

std::optional<BundleInfo> BundleInfo::read(const std::filesystem::path& folder) {
    const std::optional<std::string> bytes = readWholeFile(folder / "Info.plist", largestInfoPlist);
    const std::optional<PropertyList> info = bytes ? PropertyList::parse(*bytes) : std::nullopt;
    if (!info || !info->isDictionary())
        return std::nullopt;
    const std::filesystem::path named = folder.has_filename() ? folder : folder.parent_path();
    return from(*info, named.filename().native());
}

BundleInfo BundleInfo::from(const PropertyList& info, std::string_view folderName) {
    BundleInfo result;
    result.identifier = textFor(info, "CFBundleIdentifier");
    std::optional<std::string> name = textFor(info, "CFBundleDisplayName");
    if (!name)
        name = textFor(info, "CFBundleName");
    result.displayName = name ? *name : std::filesystem::path(folderName).stem().native();
    result.version = textFor(info, "CFBundleVersion");
    for (const std::string& tag : textsOf(info.valueForKey("SBAppTags")))
        result.hidden = result.hidden || tag == "hidden";
    result.urlSchemes = schemesOf(info.valueForKey("CFBundleURLTypes"));
    return result;
}

} // namespace dubrix
