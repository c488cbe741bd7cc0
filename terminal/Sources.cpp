#include "terminal/Sources.h"

#include "engine/CloneEngine.h"
#include "engine/DXShared.h"
#include "formats/lists/PropertyList.h"

#include <set>

namespace dubrix {

Source sourceNamed(const Session& session, const std::string& text) {
    if (session.posix.workspace.applicationIsInstalled(text))
        return {text};
    std::vector<std::string> found;
    for (const ApplicationList::Entry& entry : session.posix.applications.entries())
        if (!entry.isSystemApplication && entry.displayName == text)
            found.push_back(entry.displayIdentifier);
    if (found.empty())
        return {"", "no such application is installed: " + text};
    if (found.size() == 1)
        return {found[0]};
    std::string sentence = "several applications are called " + text + ":";
    for (const std::string& identifier : found)
        sentence += " " + identifier;
    return {"", sentence, true};
}

std::vector<Source> sourcesNamed(const Session& session, const std::vector<std::string>& texts) {
    std::vector<Source> sources;
    sources.reserve(texts.size());
    for (const std::string& text : texts)
        sources.push_back(sourceNamed(session, text));
    if (!texts.empty())
        return sources;
    const auto stored = dictionaryWithContentsOfFile(session.posix.files, settingsFilePath);
    const auto chosen = stored ? stored->stringForKey("bundleID") : std::nullopt;
    if (!chosen)
        return {{"", "no application is chosen in the settings: name one"}};
    if (!session.posix.workspace.applicationIsInstalled(*chosen))
        return {{"", "the application that is chosen is not installed: " + *chosen}};
    return {{*chosen}};
}

std::string valueOf(const Session& session, std::string_view key, const std::string& identifier) {
    return session.posix.applications.valueForKey(key, identifier).value_or("");
}

std::vector<Duplicate> duplicatesOf(const Session& session, const std::string& source) {
    const auto version = session.posix.applications.valueForKey("bundleVersion", source);
    std::vector<Duplicate> duplicates;
    for (int number = 1; number <= highestDuplicateNumber; ++number) {
        const std::string identifier = CloneEngine::duplicateIdentifier(source, number);
        if (!session.posix.workspace.applicationIsInstalled(identifier))
            continue;
        const auto own = session.posix.applications.valueForKey("bundleVersion", identifier);
        duplicates.push_back({number, identifier, valueOf(session, "displayName", identifier),
                              own.value_or(""), !CloneEngine::sameVersion(own, version)});
    }
    return duplicates;
}

std::vector<Source> sourcesWithDuplicates(const Session& session) {
    std::set<std::string> duplicates;
    std::vector<Source> sources;
    const auto entries = session.posix.applications.entries();
    for (const ApplicationList::Entry& entry : entries)
        if (!entry.isSystemApplication && !duplicates.contains(entry.displayIdentifier))
            for (const Duplicate& duplicate : duplicatesOf(session, entry.displayIdentifier)) {
                duplicates.insert(duplicate.identifier);
                if (sources.empty() || sources.back().identifier != entry.displayIdentifier)
                    sources.push_back({entry.displayIdentifier});
            }
    std::erase_if(sources, [&duplicates](const Source& source) {
        return duplicates.contains(source.identifier);
    });
    return sources;
}

} // namespace dubrix
