#include "engine/Alerts.h"
#include "engine/CloneEngine.h"
#include "engine/DXShared.h"
#include "engine/Operation.h"
#include "formats/lists/PropertyList.h"
#include "overlays/ProgressHUD.h"
#include "platform/CommandRunner.h"
#include "platform/FileManager.h"

namespace dubrix {

namespace {

std::string progressText(bool update, const Text& name, const std::string& number,
                         const Text& duplicateVersion) {
    return update
               ? stringWithFormat("Updating %@ %@\nto version %@", name, number, duplicateVersion)
               : stringWithFormat("Cloning %@ %@", name, number);
}

ProgressAlert progressAlert(const std::string& text, Size view) {
    const std::string message = stringWithFormat("%@\n%@", text, "Please wait...");
    return {.title = "Dubrix",
            .message = stringWithFormat("%@\n\n", message), // leaves room for the spinner
            .spinnerFrame = {{view.width / 2 - 10, view.height - 150}, {20, 20}}};
}

} // namespace

CloneEngine::Staging CloneEngine::stagingFor(const Text& name, const Text& path) {
    Text bundleName;
    if (path)
        bundleName = lastPathComponentWithoutExtension(*path);
    return {stringWithFormat("/tmp/%@/", name), stringWithFormat("/tmp/%@/Payload/", name),
            stringWithFormat("/tmp/%@/Payload/%@.app/", name, bundleName)};
}

void CloneEngine::editInfoPlist(const std::string& path, const PropertyList& settings,
                                const Text& name, const std::string& number,
                                const std::string& identifier) {
    std::optional<PropertyList> displayName =
        PropertyList::string(stringWithFormat("%@ %@", name, number));
    if (const auto custom = settings.valueForKey("customNameToggle");
        custom && custom->booleanValue())
        displayName = settings.valueForKey("customText");

    auto info = dictionaryWithContentsOfFile(platform_.files, path);
    if (!info)
        return;
    info->setValueForKey("CFBundleIdentifier", PropertyList::string(identifier));
    if (displayName)
        info->setValueForKey("CFBundleDisplayName", *displayName);
    else
        info->removeValueForKey("CFBundleDisplayName");
    platform_.files.writeToFile(path, info->xml());
}

void CloneEngine::duplicateAppWithNumber(const std::string& number) {
    Operation operation(*this);
    if (operation.hasBegun() && operation.claimsDevice())
        makeDuplicate(number);
}

void CloneEngine::makeDuplicate(const std::string& number) {
    const PropertyList choices = settings();
    const Text source = choices.stringForKey("bundleID");
    const Text name = nameForBundleID(source);
    const Text path = pathForBundleID(source);
    const Text version = versionForBundleID(source);
    const Staging staging = stagingFor(name, path);
    const std::string duplicate = duplicateIdentifier(source, number);

    const bool installed = isInstalled(duplicate);
    const Text duplicateVersion = versionForBundleID(duplicate);
    const bool same = sameVersion(duplicateVersion, version);

    if (!platform_.files.fileExistsAtPath(staging.payload))
        platform_.files.createDirectoryAtPath(staging.payload);

    alerts_.presentProgressAlert(progressAlert(
        progressText(installed && !same, name, number, duplicateVersion), alerts_.mainViewSize()));

    platform_.commands.runCommand(stringWithFormat("cp -rf '%@' '%@'", path, staging.payload));

    const std::string infoPlist = stringWithFormat("%@/Info.plist", staging.bundle);
    if (platform_.files.fileExistsAtPath(infoPlist))
        editInfoPlist(infoPlist, choices, name, number, duplicate);
    if (const auto tint = choices.valueForKey("customColorToggle"); tint && tint->booleanValue())
        colorIcons();

    platform_.commands.runCommand(
        stringWithFormat("cd /tmp/'%@'/ && zip -r '%@'.ipa *", name, name));
    platform_.commands.runCommand(
        stringWithFormat("ipainstaller -f /tmp/'%@'/'%@'.ipa", name, name));

    alerts_.dismissProgressAlert();

    if (isInstalled(duplicate)) {
        ProgressHUD::showSuccess(stringWithFormat("%@ successfully duplicated.", name));
        if (platform_.files.fileExistsAtPath(staging.root))
            platform_.files.removeItemAtPath(staging.root);
    } else {
        ProgressHUD::showError(stringWithFormat("Failed to duplicate %@.", name));
    }
}

} // namespace dubrix
