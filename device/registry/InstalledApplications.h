#pragma once

#include <string>
#include <vector>

namespace dubrix {

class Registry;

struct InstalledApplication {
    std::string identifier;
    std::string name;
    /// The bundle folder on the device.
    std::string path;
    bool isSystemApplication = false;
    bool isHidden = false;
};

/// All applications of a device with what their bundles say of themselves: those registered, sorted
/// by the identifiers' bytes, then the system's. Bundles that say nothing are left out. Reads the
/// Info.plist of each; any thread.
std::vector<InstalledApplication> installedApplications(const Registry& registry);

} // namespace dubrix
