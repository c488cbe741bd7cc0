#include "terminal/Commands.h"

#include "terminal/Sources.h"

#include <algorithm>

namespace dubrix {

namespace {

using Reply = TerminalAlerts::Reply;

/// A duplicate before and after.
struct Update {
    Duplicate before;
    std::string version;
};

std::optional<Duplicate> firstStale(const Session& session, const std::string& source) {
    const std::vector<Duplicate> duplicates = duplicatesOf(session, source);
    const auto found = std::ranges::find(duplicates, true, &Duplicate::isStale);
    return found != duplicates.end() ? std::optional(*found) : std::nullopt;
}

/// Rebuilds the lowest stale duplicate. The first time the person is asked whether to start: by the
/// engine, or, where only duplicates behind a gap are stale, in its words.
std::vector<Attempt> rebuild(Session& session, const std::string& source,
                             const Duplicate& duplicate, bool isFirst) {
    const auto direct = [&duplicate](CloneEngine& engine) {
        engine.duplicateAppWithNumber(std::to_string(duplicate.number));
    };
    if (!isFirst)
        return session.run(direct);
    const std::string name = valueOf(session, "displayName", source);
    return session.run([&](CloneEngine& engine) {
        const std::vector<Duplicate> all = duplicatesOf(session, source);
        const auto gap = std::ranges::adjacent_find(
            all, [](const auto& one, const auto& next) { return next.number != one.number + 1; });
        const bool isBehindGap =
            all.front().number != 1 || (gap != all.end() && duplicate.number > gap->number);
        if (!isBehindGap)
            return engine.showUpdateAlert();
        session.alerts.show2ButtonAlertWithTitle(
            name,
            stringWithFormat("Would you like to start updating %@ ? (%@ %d)", duplicate.name, name,
                             duplicate.number),
            "Update", "Cancel", [] {}, [&] { direct(engine); });
    });
}

ExitStatus updateOne(Session& session, const std::string& source, std::vector<Update>& updates) {
    bool isFirst = true;
    while (!session.isStopped()) {
        const std::optional<Duplicate> stale = firstStale(session, source);
        if (!stale)
            return AllDone;
        const std::vector<Attempt> attempts = rebuild(session, source, *stale, isFirst);
        if (session.alerts.wasUnanswered())
            return WrongUse;
        if (attempts.empty())
            return SomethingFailed; // or cancelled
        if (!attempts.back().succeeded)
            return SomethingFailed;
        updates.push_back({*stale, valueOf(session, "bundleVersion", stale->identifier)});
        const std::vector<Duplicate> after = duplicatesOf(session, source);
        const auto again = std::ranges::find(after, stale->number, &Duplicate::number);
        if (again == after.end() || again->isStale) {
            session.console.refuse(stale->identifier + " is stale as before");
            return SomethingFailed;
        }
        isFirst = false;
    }
    return SomethingFailed;
}

Json asJson(const Update& update) {
    return Json::object({{"number", Json::number(update.before.number)},
                         {"identifier", Json::text(update.before.identifier)},
                         {"name", Json::text(update.before.name)},
                         {"from", Json::text(update.before.version)},
                         {"to", Json::text(update.version)}});
}

} // namespace

ExitStatus update(Session& session, const Request& request) {
    session.alerts.setReplies(request.saysYes ? Reply::Yes : Reply::Ask, Reply::No);
    ExitStatus status = AllDone;
    std::vector<Json> all;
    for (const Source& source :
         request.ofAll ? sourcesWithDuplicates(session) : sourcesNamed(session, request.sources)) {
        ExitStatus ended = source.isAmbiguous ? WrongUse : SomethingFailed;
        std::vector<Update> updates;
        if (!source.mistake.empty()) {
            session.console.refuse(source.mistake);
        } else {
            session.settings.values.identifier = source.identifier;
            ended = updateOne(session, source.identifier, updates);
        }
        for (const Update& update : updates) {
            all.push_back(asJson(update));
            if (!request.asJson)
                session.console.give(
                    std::to_string(update.before.number) + "\t" + field(update.before.identifier) +
                    "\t" + field(update.before.name) + "\t" + field(update.before.version) + "\t" +
                    field(update.version) + "\n");
        }
        status = std::max(status, ended);
        if (session.isStopped() || session.alerts.wasUnanswered())
            break;
    }
    if (session.isStopped())
        session.console.refuse("stopped; " + std::to_string(all.size()) + " rebuilt before that");
    if (request.asJson)
        session.console.give(Json::array(all).spelled() + "\n");
    return status;
}

} // namespace dubrix
