#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace dubrix {

class PropertyList;

/// What a bundle says of itself in its Info.plist. A value of a wrong type counts as absent.
struct BundleInfo {
    /// CFBundleIdentifier.
    std::optional<std::string> identifier;
    /// CFBundleDisplayName, else CFBundleName, else the folder's name without its extension.
    std::string displayName;
    /// CFBundleVersion.
    std::optional<std::string> version;
    /// Whether the bundle asks not to be shown: SBAppTags contains "hidden".
    bool hidden = false;
    /// The address schemes it opens: CFBundleURLSchemes of every entry of CFBundleURLTypes.
    std::vector<std::string> urlSchemes;

    /// From the bundle at `folder`; nothing without an Info.plist that is a dictionary.
    static std::optional<BundleInfo> read(const std::filesystem::path& folder);
    /// From the Info.plist `file` of a bundle folder with the name `folderName`.
    static std::optional<BundleInfo> readFile(const std::filesystem::path& file,
                                              std::string_view folderName);
    /// From an Info.plist already parsed, of a bundle folder with the name `folderName`.
    static BundleInfo from(const PropertyList& info, std::string_view folderName);

    /// No Info.plist larger than this many bytes is read.
    static constexpr std::size_t largestInfoPlist = std::size_t{8} << 20;
};

} // namespace dubrix
