#include "engine/CloneEngine.h"
#include "engine/Endpoints.h"
#include "engine/Operation.h"
#include "platform/CommandRunner.h"
#include "platform/Downloader.h"
#include "platform/FileManager.h"

namespace dubrix {

void CloneEngine::installerCheck() {
    const Operation operation(*this);
    if (!operation.hasBegun())
        return;
    const std::string tool = "/usr/bin/appinst";
    const std::string address(endpoints::installerPackage);
    const std::string package = "/tmp/com.vorlund.appinst_iphoneos-arm.deb";
    const std::string closePackages = "killall MobileCydia";
    const std::string install = "dpkg -i /tmp/com.vorlund.appinst_iphoneos-arm.deb";

    // The second attempt is the last, whatever comes of it; nobody is told.
    for (int attempt = 0; attempt < 2 && !platform_.files.fileExistsAtPath(tool); ++attempt) {
        // A failed download does not end an attempt: an earlier one's package may still be there.
        if (const auto data = platform_.downloader.dataWithContentsOfURL(address))
            platform_.files.writeToFile(package, *data);
        platform_.commands.runCommand(closePackages);
        platform_.commands.runCommand(install);
    }
}

} // namespace dubrix
