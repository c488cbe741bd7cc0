#include "tests/device/DeviceFolder.h"

#include "formats/lists/PropertyList.h"

namespace dubrix {

std::string infoPlist(const std::string& identifier, const std::string& version) {
    PropertyList info = PropertyList::dictionary();
    info.setValueForKey("CFBundleIdentifier", PropertyList::string(identifier));
    info.setValueForKey("CFBundleVersion", PropertyList::string(version));
    return info.binary();
}

} // namespace dubrix
