#include "engine/Alerts.h"
#include "engine/CloneEngine.h"
#include "engine/Operation.h"
#include "platform/SystemLog.h"

namespace dubrix {

std::string CloneEngine::duplicateIdentifier(const Text& source, const FormatArgument& number) {
    return stringWithFormat("%@%@", source, number);
}

int CloneEngine::contiguousDuplicates(const Text& source, Logging logging) const {
    for (int candidate = 1; candidate <= highestDuplicateNumber; ++candidate) {
        if (logging == Logging::On)
            platform_.log.log(stringWithFormat("int is equal to %d", candidate));
        if (!isInstalled(duplicateIdentifier(source, candidate)))
            return candidate - 1;
    }
    return 0;
}

void CloneEngine::DuplicateStartAt(int start) {
    Operation operation(*this);
    if (!operation.hasBegun())
        return;
    const Source chosen = source();
    // What is free may be taken by another until the device is claimed.
    if (start > highestDuplicateNumber || !operation.claimsDevice())
        return;
    for (int number = start; number <= highestDuplicateNumber; ++number) {
        const std::string identifier = duplicateIdentifier(chosen.identifier, number);
        const bool installed = isInstalled(identifier);
        const bool same = sameVersion(versionForBundleID(identifier), chosen.version);
        if (installed && same && number == highestDuplicateNumber)
            return alerts_.showSimpleAlertWithTitle(
                "OH MY GOD!",
                stringWithFormat("You have already created 100 versions of %@!", chosen.name),
                "Ok");
        if (installed && !same)
            return updateAlertAt(number);
        if (!installed && !same)
            return makeDuplicate(stringWithFormat("%d", number));
    }
}

} // namespace dubrix
