#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace dubrix {

/// A base name in an icon list, with the icon's size in points, and what follows it in the names of
/// the files that stand for it, ".png" left out: "", "@2x", "@3x", "~ipad", "@2x~ipad".
struct IconFile {
    const char* baseName;
    std::vector<std::string> suffixes;
};

/// Where a bundle's Info.plist names its icons.
enum class IconKeys { TopLevelList, PrimaryIcon, PrimaryIconAndTablet };

struct SampleBundle {
    const char* name;
    const char* displayName;
    const char* version;
    IconKeys iconKeys;
    bool binaryPropertyList;
    std::vector<IconFile> icons;
};

/// The sample applications, in the order of their folders' names.
std::vector<SampleBundle> sampleBundles();

/// All icon files of `icons`, drawn from the SVG file `art`, as PNG files in `folder`; false when
/// one cannot be written.
bool writeIcons(const std::filesystem::path& folder, const std::filesystem::path& art,
                const std::vector<IconFile>& icons);

/// Writes <folder>/<name>.app with icons, drawn from <art>/<name in lower case>.svg, Info.plist, an
/// executable placeholder and resources of several kinds (localised folders, a symbolic link,
/// unusual permissions). False on any failure, with a part of the bundle left.
bool writeBundle(const std::filesystem::path& folder, const SampleBundle& sample,
                 const std::filesystem::path& art);

} // namespace dubrix
