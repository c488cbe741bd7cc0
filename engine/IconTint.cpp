#include "engine/CloneEngine.h"
#include "engine/DXShared.h"
#include "formats/lists/PropertyList.h"
#include "platform/FileManager.h"
#include "platform/MonochromeFilter.h"
#include "platform/SystemLog.h"

#include <array>

namespace dubrix {

namespace {

/// What is appended to a listed name to find its files, in the order of the probes. The bare name
/// is probed twice, so a file whose exact name is listed is re-tinted twice.
constexpr std::array probes = {
    "%@",     "%@@2x",     "%@@3x",     "%@~ipad",     "%@@2x~ipad",     "%@@3x~ipad",    "%@",
    "%@.png", "%@@2x.png", "%@@3x.png", "%@~ipad.png", "%@@2x~ipad.png", "%@@3x~ipad.png"};

std::optional<PropertyList> primaryIconFiles(const PropertyList& info, std::string_view key) {
    const auto icons = info.valueForKey(key);
    const auto primary = icons ? icons->valueForKey("CFBundlePrimaryIcon") : std::nullopt;
    return primary ? primary->valueForKey("CFBundleIconFiles") : std::nullopt;
}

float component(const PropertyList& settings, std::string_view key) {
    const auto value = settings.valueForKey(key);
    return value ? value->floatValue() : 0.0F;
}

} // namespace

void CloneEngine::colorIcons() {
    const Text source = settings().stringForKey("bundleID");
    const Text name = nameForBundleID(source);
    const std::string folder = stagingFor(name, pathForBundleID(source)).bundle;
    const auto info =
        dictionaryWithContentsOfFile(platform_.files, stringWithFormat("%@Info.plist", folder));
    if (!info)
        return;
    colorIconList(info->valueForKey("CFBundleIconFiles"), folder);
    colorIconList(primaryIconFiles(*info, "CFBundleIcons"), folder);
    colorIconList(primaryIconFiles(*info, "CFBundleIcons~ipad"), folder);
}

void CloneEngine::colorIconList(const std::optional<PropertyList>& names,
                                const std::string& folder) {
    if (!names || names->type() != PropertyList::Type::Array)
        return;
    for (std::size_t index = 0; index < names->count(); ++index) {
        const Text name = names->valueAt(index)->stringValue();
        if (!name)
            continue;
        for (const char* const probe : probes) {
            const std::string file = stringWithFormat(probe, name);
            if (platform_.files.fileExistsAtPath(stringWithFormat("%@%@", folder, file)))
                colorImage(file);
        }
    }
}

void CloneEngine::colorImage(const std::string& name) {
    const PropertyList choices = settings();
    const Text source = choices.stringForKey("bundleID");
    const Text displayName = nameForBundleID(source);
    const Staging staging = stagingFor(displayName, pathForBundleID(source));
    const std::string path = stringWithFormat("%@%@", staging.bundle, name);
    if (!platform_.files.fileExistsAtPath(path))
        return;
    std::optional<std::string> png;
    if (const auto image = platform_.files.contentsAtPath(path))
        png = platform_.monochrome.monochromePng(*image, component(choices, "Red"),
                                                 component(choices, "Green"),
                                                 component(choices, "Blue"));
    if (!png || !platform_.files.writeToFile(path, *png))
        platform_.log.log("Nothing to write");
}

} // namespace dubrix
