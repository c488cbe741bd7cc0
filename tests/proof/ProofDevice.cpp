#include "tests/proof/ProofDevice.h"

#include "formats/lists/PropertyList.h"
#include "tests/formats/ImageFiles.h"

namespace dubrix {

ProofDevice::ProofDevice() {
    std::filesystem::create_directories(staging());
    std::filesystem::create_directories(tools());
    installSource("1");
    putFile(settingsPath(), "{bundleID = \"" + source + "\"; customColorToggle = 1; Red = 0.75;}");
}

std::filesystem::path ProofDevice::sourceArchive(const std::string& version) const {
    const auto info = PropertyList::parse(
        "{CFBundleIdentifier = \"" + source + "\"; CFBundleVersion = " + version +
        "; CFBundleDisplayName = \"Fine App\"; CFBundleIconFiles = (Icon, \"art/Badge\");}");
    const std::string icon = pngOf(samplePixels(21 * 11), 21);
    std::vector<ZipItem> items{{"large", std::string(200'000, version[0])},
                               {"link", "data/two", S_IFLNK | 0777},
                               {"Info.plist", info->binary()}};
    for (const char* name : {"Icon.png", "Icon@2x.png", "art/Badge.png"})
        items.push_back({name, icon});
    for (const char* name : {"one", "data/two", "data/three"})
        items.push_back({name, name + version});
    for (ZipItem& item : items)
        item.name.insert(0, "Payload/X.app/");
    return archive("source.ipa", zipOf(items));
}

std::vector<Ended>
ProofDevice::runTogether(const std::vector<std::vector<std::string>>& programs) const {
    const auto saidBy = [this](std::size_t program) {
        return folder() / ("said" + std::to_string(program));
    };
    std::vector<std::unique_ptr<ProcessGroup>> running;
    for (const std::vector<std::string>& words : programs)
        running.push_back(
            std::make_unique<ProcessGroup>(words, searchPath(), saidBy(running.size())));
    std::vector<Ended> ends;
    for (const auto& program : running) {
        Ended ended{program->wait()};
        std::ifstream lines(saidBy(ends.size()));
        for (std::string line; std::getline(lines, line);)
            ended.said = line;
        ends.push_back(ended);
    }
    return ends;
}

} // namespace dubrix
