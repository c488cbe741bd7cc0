#include "engine/CloneEngine.h"
#include "engine/DXShared.h"
#include "formats/lists/PropertyList.h"
#include "platform/ApplicationList.h"
#include "platform/ApplicationWorkspace.h"

namespace dubrix {

namespace {

Text listed(const ApplicationList* list, std::string_view key, const Text& identifier) {
    return list && identifier ? list->valueForKey(key, *identifier) : std::nullopt;
}

} // namespace

bool CloneEngine::isInstalled(const Text& identifier) const {
    return identifier && platform_.workspace.applicationIsInstalled(*identifier);
}

Text CloneEngine::nameForBundleID(const Text& identifier) const {
    return listed(al, "displayName", identifier);
}

Text CloneEngine::pathForBundleID(const Text& identifier) const {
    return listed(al, "path", identifier);
}

Text CloneEngine::versionForBundleID(const Text& identifier) const {
    return listed(al, "bundleVersion", identifier);
}

PropertyList CloneEngine::settings() const {
    return dictionaryWithContentsOfFile(platform_.files, settingsFilePath)
        .value_or(PropertyList::dictionary());
}

CloneEngine::Source CloneEngine::source() const {
    Source source;
    source.identifier = settings().stringForKey("bundleID");
    source.name = nameForBundleID(source.identifier);
    source.version = versionForBundleID(source.identifier);
    return source;
}

bool CloneEngine::sameVersion(const Text& one, const Text& other) {
    return one && other && *one == *other;
}

} // namespace dubrix
