#include "tests/proof/ProofDevice.h"

#include "formats/lists/PropertyList.h"

namespace dubrix {

void ProofDevice::writeSettings() const {
    PropertyList settings = PropertyList::dictionary();
    settings.setValueForKey("bundleID", PropertyList::string(source));
    settings.setValueForKey("customColorToggle", PropertyList::boolean(true));
    settings.setValueForKey("Red", PropertyList::real(0.75));
    putFile(settingsPath(), settings.xml());
}

std::filesystem::path ProofDevice::sourceArchive(const std::string& version) const {
    PropertyList info = *PropertyList::parse(infoPlist(source, version));
    info.setValueForKey("CFBundleDisplayName", PropertyList::string("Fine App"));
    PropertyList icons = PropertyList::array();
    for (const char* name : {"Icon", "art/Badge"})
        icons.append(PropertyList::string(name));
    info.setValueForKey("CFBundleIconFiles", icons);
    const std::string icon = SamplePng({PNG_COLOR_TYPE_RGB_ALPHA, 8, false, false}).bytes();
    std::vector<ZipItem> items;
    for (const char* name : {"Icon.png", "Icon@2x.png", "art/Badge.png"})
        items.push_back({"Payload/X.app/" + std::string(name), icon});
    for (const char* name : {"one", "data/two", "data/three"})
        items.push_back({"Payload/X.app/" + std::string(name), name + version});
    items.push_back({"Payload/X.app/large", std::string(200'000, version[0])});
    items.push_back({"Payload/X.app/link", "data/two", S_IFLNK | 0777});
    items.push_back({"Payload/X.app/Info.plist", info.binary()});
    return archive("source.ipa", zipOf(items));
}

} // namespace dubrix
