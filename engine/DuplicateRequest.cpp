#include "engine/Alerts.h"
#include "engine/CloneEngine.h"
#include "engine/Operation.h"
#include "formats/lists/PropertyList.h"
#include "platform/ByteCountFormatter.h"
#include "platform/FileManager.h"
#include "platform/SystemLog.h"

namespace dubrix {

void CloneEngine::showDuplicateAlert() {
    const Operation operation(*this);
    if (!operation.hasBegun())
        return;
    platform_.log.log("Dubrix - Duplicate Cell Clicked");
    const Text source = settings().stringForKey("bundleID");
    const Text name = nameForBundleID(source);
    const Text path = pathForBundleID(source);
    const Text version = versionForBundleID(source);
    Text size;
    if (path && platform_.files.fileExistsAtPath(*path))
        size = sizeOfFolder(*path);
    if (!isInstalled(stringWithFormat("%@", source)))
        return alerts_.showSimpleAlertWithTitle("Dubrix", "Please select an app from the list",
                                                "Ok");
    // Reached without a source only when "(null)" is itself an installed identifier.
    if (!source)
        return alerts_.showSimpleAlertWithTitle("Dubrix", "The selected app is not installed",
                                                "Ok");
    const int duplicates = contiguousDuplicates(source, Logging::On);
    alerts_.show2ButtonAlertWithTitle(
        name,
        stringWithFormat("App size: %@\nApp version: %@\nDuplicates: %d", size, version,
                         duplicates),
        "Duplicate", "Cancel", [] {}, [this] { DuplicateStartAt(1); });
}

std::string CloneEngine::sizeOfFolder(const std::string& path) const {
    platform_.log.log("Dubrix - Calculating Folder Size");
    std::int64_t total = 0;
    // Each size counts as a signed 32-bit number: a file of 2 GiB or more wraps.
    for (const std::int64_t size : platform_.files.sizesOfItemsBelowPath(path))
        total += static_cast<std::int32_t>(size);
    return platform_.byteCounts.stringFromByteCount(total);
}

} // namespace dubrix
