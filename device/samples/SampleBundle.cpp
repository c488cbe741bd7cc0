#include "device/samples/SampleBundle.h"

#include "device/samples/IconArt.h"
#include "files/WholeFile.h"
#include "formats/lists/PropertyList.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace dubrix {

namespace fs = std::filesystem;

namespace {

PropertyList listOfIcons(const std::vector<IconFile>& icons) {
    PropertyList list = PropertyList::array();
    for (const IconFile& icon : icons) {
        list.append(PropertyList::string(icon.baseName));
    }
    return list;
}

PropertyList primaryIcon(const std::vector<IconFile>& icons) {
    PropertyList primary = PropertyList::dictionary();
    primary.setValueForKey("CFBundleIconFiles", listOfIcons(icons));
    primary.setValueForKey("UIPrerenderedIcon", PropertyList::boolean(false));
    PropertyList result = PropertyList::dictionary();
    result.setValueForKey("CFBundlePrimaryIcon", primary);
    return result;
}

int pixelsOf(const IconFile& icon, const std::string& suffix) {
    const int scale = suffix.starts_with("@") ? suffix[1] - '0' : 1;
    return static_cast<int>(scale * std::atof(std::strpbrk(icon.baseName, "0123456789")));
}

bool isForTablets(const IconFile& icon) {
    return icon.suffixes.back().ends_with("~ipad");
}

void setIconKeys(PropertyList& info, const SampleBundle& sample) {
    switch (sample.iconKeys) {
    case IconKeys::TopLevelList:
        info.setValueForKey("CFBundleIconFiles", listOfIcons(sample.icons));
        break;
    case IconKeys::PrimaryIcon:
        info.setValueForKey("CFBundleIcons", primaryIcon(sample.icons));
        break;
    case IconKeys::PrimaryIconAndTablet: {
        std::vector<IconFile> phone = sample.icons;
        std::erase_if(phone, isForTablets);
        info.setValueForKey("CFBundleIcons", primaryIcon(phone));
        info.setValueForKey("CFBundleIcons~ipad", primaryIcon(sample.icons));
        break;
    }
    }
}

std::string lowerCase(std::string name) {
    std::transform(name.begin(), name.end(), name.begin(),
                   [](char letter) { return static_cast<char>(letter | 0x20); });
    return name;
}

std::string infoPropertyList(const SampleBundle& sample) {
    PropertyList families = PropertyList::array();
    families.append(PropertyList::integer(1));
    families.append(PropertyList::integer(2));
    PropertyList info = PropertyList::dictionary();
    const auto setText = [&info](const char* key, const std::string& text) {
        info.setValueForKey(key, PropertyList::string(text));
    };
    setText("CFBundleIdentifier", "com.dubrix.samples." + lowerCase(sample.name));
    setText("CFBundleExecutable", sample.name);
    setText("CFBundleName", sample.name);
    setText("CFBundleDisplayName", sample.displayName);
    setText("CFBundleVersion", sample.version);
    setText("CFBundleShortVersionString", sample.version);
    setText("CFBundlePackageType", "APPL");
    setText("CFBundleDevelopmentRegion", "en");
    setText("MinimumOSVersion", "9.0");
    info.setValueForKey("LSRequiresIPhoneOS", PropertyList::boolean(true));
    info.setValueForKey("UIDeviceFamily", families);
    setIconKeys(info, sample);
    return sample.binaryPropertyList ? info.binary() : info.xml();
}

/// One file with its permissions; readable by everybody, since an installed sample belongs to root.
bool writeFile(const fs::path& path, const std::string& text, fs::perms permissions) {
    std::error_code error;
    fs::create_directories(path.parent_path(), error);
    if (error || !replaceWholeFile(path, text, Durability::Process))
        return false;
    fs::permissions(path, permissions, error);
    return !error;
}

bool writeResources(const fs::path& bundle, const SampleBundle& sample) {
    const std::string name = sample.displayName;
    std::error_code error;
    return writeFile(bundle / sample.name, "#!/bin/sh\necho '" + name + "'\n", fs::perms(0755)) &&
           writeFile(bundle / "PkgInfo", "APPL????", fs::perms(0644)) &&
           writeFile(bundle / "en.lproj/Localizable.strings",
                     "/* The first screen */\n\"welcome\" = \"Welcome to " + name + "\";\n",
                     fs::perms(0644)) &&
           writeFile(bundle / "de.lproj/Localizable.strings",
                     "/* The first screen */\n\"welcome\" = \"Willkommen bei " + name + "\";\n",
                     fs::perms(0664)) &&
           writeFile(bundle / "Resources/Guides/first steps.txt",
                     "Tap anywhere to begin.\nSwipe to the left to come back here.\n",
                     fs::perms(0444)) &&
           writeFile(bundle / "Resources/Guides/check", "#!/bin/sh\nexit 0\n", fs::perms(0555)) &&
           (fs::create_symlink("Resources/Guides/first steps.txt", bundle / "ReadMe.txt", error),
            !error) &&
           (fs::permissions(bundle / "Resources/Guides", fs::perms(0775), error), !error);
}

} // namespace

std::vector<SampleBundle> sampleBundles() {
    return {
        {"Fernleaf",
         "Fernleaf Notes",
         "2.1",
         IconKeys::TopLevelList,
         false,
         {{"Icon-29", {"", "@2x", "@3x"}},
          {"Icon-60", {"@2x", "@3x"}},
          {"Icon-76", {"~ipad", "@2x~ipad"}}}},
        {"Skyfathom",
         "Skyfathom",
         "4.0.3",
         IconKeys::PrimaryIcon,
         true,
         {{"AppIcon29x29", {"", "@2x", "@3x"}},
          {"AppIcon40x40", {"@2x", "@3x"}},
          {"AppIcon60x60", {"@2x", "@3x"}}}},
        {"Tockwell",
         "Tockwell",
         "1.7 Evening",
         IconKeys::PrimaryIconAndTablet,
         false,
         {{"AppIcon29x29", {"@2x", "@3x"}},
          {"AppIcon60x60", {"@2x", "@3x"}},
          {"AppIcon76x76", {"~ipad", "@2x~ipad"}},
          {"AppIcon83.5x83.5", {"@2x~ipad"}}}},
    };
}

bool writeIcons(const fs::path& folder, const fs::path& art, const std::vector<IconFile>& icons) {
    std::error_code error;
    fs::create_directories(folder, error);
    for (const IconFile& icon : icons) {
        for (const std::string& suffix : icon.suffixes) {
            const fs::path file = folder / (icon.baseName + suffix + ".png");
            if (!iconImage(art, pixelsOf(icon, suffix))
                     .save(QString::fromStdString(file.string()), "PNG"))
                return false;
        }
    }
    return true;
}

bool writeBundle(const fs::path& folder, const SampleBundle& sample, const fs::path& art) {
    const fs::path bundle = folder / (std::string(sample.name) + ".app");
    return writeIcons(bundle, art / (lowerCase(sample.name) + ".svg"), sample.icons) &&
           writeFile(bundle / "Info.plist", infoPropertyList(sample), fs::perms(0644)) &&
           writeResources(bundle, sample);
}

} // namespace dubrix
