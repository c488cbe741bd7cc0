#include "terminal/Commands.h"

#include "terminal/Sources.h"

#include <algorithm>

namespace dubrix {

namespace {

Json asJson(const Session& session, const std::string& source,
            const std::vector<Duplicate>& duplicates) {
    std::vector<Json> objects;
    objects.reserve(duplicates.size());
    for (const Duplicate& duplicate : duplicates)
        objects.push_back(
            Json::object({{"number", Json::number(duplicate.number)},
                          {"identifier", Json::text(duplicate.identifier)},
                          {"name", Json::text(duplicate.name)},
                          {"version", Json::text(duplicate.version)},
                          {"state", Json::text(duplicate.isStale ? "stale" : "current")}}));
    return Json::object({{"identifier", Json::text(source)},
                         {"name", Json::text(valueOf(session, "displayName", source))},
                         {"version", Json::text(valueOf(session, "bundleVersion", source))},
                         {"duplicates", Json::array(objects)}});
}

std::string linesOf(const Session& session, const std::string& source,
                    const std::vector<Duplicate>& duplicates) {
    const auto stale = std::ranges::count(duplicates, true, &Duplicate::isStale);
    std::string lines = field(source) + "\t" + field(valueOf(session, "displayName", source)) +
                        "\t" + field(valueOf(session, "bundleVersion", source)) + "\t" +
                        std::to_string(duplicates.size()) + "\t" + std::to_string(stale) + "\n";
    int next = 1;
    for (const Duplicate& duplicate : duplicates) {
        if (duplicate.number > next)
            lines +=
                "\t" + std::to_string(next) +
                (duplicate.number > next + 1 ? "-" + std::to_string(duplicate.number - 1) : "") +
                "\t\t\tgap\n";
        lines += "\t" + std::to_string(duplicate.number) + "\t" + field(duplicate.name) + "\t" +
                 field(duplicate.version) + "\t" + (duplicate.isStale ? "stale" : "current") + "\n";
        next = duplicate.number + 1;
    }
    return lines;
}

} // namespace

ExitStatus showStatus(Session& session, const Request& request) {
    ExitStatus status = AllDone;
    std::vector<Json> all;
    for (const Source& source : request.sources.empty() ? sourcesWithDuplicates(session)
                                                        : sourcesNamed(session, request.sources)) {
        if (!source.mistake.empty()) {
            session.console.refuse(source.mistake);
            status = std::max(status, source.isAmbiguous ? WrongUse : SomethingFailed);
            continue;
        }
        const std::vector<Duplicate> duplicates = duplicatesOf(session, source.identifier);
        all.push_back(asJson(session, source.identifier, duplicates));
        if (!request.asJson)
            session.console.give(linesOf(session, source.identifier, duplicates));
    }
    if (request.asJson)
        session.console.give(Json::array(all).spelled() + "\n");
    return status;
}

ExitStatus list(Session& session, const Request& request) {
    std::vector<Json> all;
    std::string lines;
    for (const ApplicationList::Entry& entry : session.posix.applications.entries()) {
        if (entry.isSystemApplication)
            continue;
        const std::string version = valueOf(session, "bundleVersion", entry.displayIdentifier);
        all.push_back(Json::object({{"identifier", Json::text(entry.displayIdentifier)},
                                    {"name", Json::text(entry.displayName)},
                                    {"version", Json::text(version)},
                                    {"path", Json::text(entry.path)}}));
        lines += field(entry.displayIdentifier) + "\t" + field(entry.displayName) + "\t" +
                 field(version) + "\t" + field(entry.path) + "\n";
    }
    session.console.give(request.asJson ? Json::array(all).spelled() + "\n" : lines);
    return AllDone;
}

} // namespace dubrix
