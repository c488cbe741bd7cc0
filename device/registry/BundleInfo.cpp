#include "device/registry/BundleInfo.h"

#include "files/WholeFile.h"
#include "formats/lists/PropertyList.h"

namespace dubrix {

namespace {

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
    return readFile(folder / "Info.plist", folder.filename().native());
}

std::optional<BundleInfo> BundleInfo::readFile(const std::filesystem::path& file,
                                               std::string_view folderName) {
    const std::optional<std::string> bytes = readWholeFile(file, largestInfoPlist);
    const std::optional<PropertyList> info = bytes ? PropertyList::parse(*bytes) : std::nullopt;
    if (!info || !info->isDictionary())
        return std::nullopt;
    return from(*info, folderName);
}

BundleInfo BundleInfo::from(const PropertyList& info, std::string_view folderName) {
    BundleInfo result;
    result.identifier = info.stringForKey("CFBundleIdentifier");
    std::optional<std::string> name = info.stringForKey("CFBundleDisplayName");
    if (!name)
        name = info.stringForKey("CFBundleName");
    result.displayName = name ? *name : std::filesystem::path(folderName).stem().native();
    result.version = info.stringForKey("CFBundleVersion");
    for (const std::string& tag : textsOf(info.valueForKey("SBAppTags")))
        result.hidden = result.hidden || tag == "hidden";
    result.urlSchemes = schemesOf(info.valueForKey("CFBundleURLTypes"));
    return result;
}

} // namespace dubrix
