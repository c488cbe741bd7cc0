#include "engine/Alerts.h"
#include "engine/CloneEngine.h"
#include "formats/lists/PropertyList.h"

namespace dubrix {

int CloneEngine::staleDuplicates(const Source& source) const {
    int stale = 0;
    for (int number = 1; number <= highestDuplicateNumber; ++number) {
        const std::string identifier = duplicateIdentifier(source.identifier, number);
        if (isInstalled(identifier) && !sameVersion(source.version, versionForBundleID(identifier)))
            ++stale;
        else if (!isInstalled(identifier)) // asked a second time: only an unbroken run counts
            break;
    }
    return stale;
}

int CloneEngine::firstStaleDuplicate(const Source& source) const {
    for (int number = 1; number <= highestDuplicateNumber; ++number) {
        const std::string identifier = duplicateIdentifier(source.identifier, number);
        if (isInstalled(identifier) && !sameVersion(source.version, versionForBundleID(identifier)))
            return number;
    }
    return 0;
}

void CloneEngine::updateAlertAt(int number) {
    const Text source = settings().stringForKey("bundleID");
    const Text name = nameForBundleID(source);
    const std::string duplicate = duplicateIdentifier(source, number);
    const Text duplicateName = nameForBundleID(duplicate);
    // The duplicate's own version, not the newer one of the source, is what the text promises.
    const Text duplicateVersion = versionForBundleID(duplicate);
    alerts_.show3ButtonAlertWithTitle(
        "Dubrix",
        stringWithFormat("An update for %@ %d is available.\n"
                         "Would you like to update %@ to version %@?",
                         name, number, duplicateName, duplicateVersion),
        "Update", "New duplicate", "Cancel",
        [this, number] { duplicateAppWithNumber(stringWithFormat("%d", number)); },
        [this, number] { DuplicateStartAt(number + 1); });
}

} // namespace dubrix
