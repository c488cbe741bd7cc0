#include "terminal/Commands.h"

#include "formats/text/PlainText.h"
#include "terminal/Sources.h"

#include <charconv>

namespace dubrix {

namespace {

using Reply = TerminalAlerts::Reply;

Reply replyToOffers(const Request& request, const Console& console) {
    if (!request.offers)
        return console.isAnswered() && !request.saysYes ? Reply::Ask : Reply::No;
    return *request.offers == Request::Offers::Accept    ? Reply::Yes
           : *request.offers == Request::Offers::Decline ? Reply::No
                                                         : Reply::Ask;
}

int numberIn(const std::string& text) {
    int number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

/// Number, identifier, name, version and archive; the launcher knows the last.
std::string lineOf(const Session& session, const std::string& source,
                   const std::string& identifier) {
    return field(identifier.substr(source.size())) + "\t" + field(identifier) + "\t" +
           field(valueOf(session, "displayName", identifier)) + "\t" +
           field(valueOf(session, "bundleVersion", identifier)) + "\t\n";
}

/// Makes so many duplicates of the source that the session has; lines of those that were made or
/// rebuilt go to `lines`.
ExitStatus duplicateOne(Session& session, const std::string& source, int count,
                        const std::function<void(const std::string&)>& give) {
    int last = 0;
    for (int made = 0; made < count && !session.isStopped();) {
        // Asked once for all of them; nor is what was declined below the last one offered again.
        const std::vector<Attempt> attempts = session.run([last](CloneEngine& engine) {
            if (last == 0)
                engine.showDuplicateAlert();
            else
                engine.DuplicateStartAt(std::min(last + 1, highestDuplicateNumber));
        });
        if (session.alerts.wasUnanswered())
            return WrongUse;
        if (attempts.empty())
            return SomethingFailed; // or cancelled
        for (const Attempt& attempt : attempts) {
            if (!attempt.succeeded)
                return SomethingFailed;
            give(lineOf(session, source, attempt.identifier));
            made += attempt.wasInstalled ? 0 : 1;
            last = numberIn(attempt.identifier.substr(source.size()));
        }
    }
    return session.isStopped() ? SomethingFailed : AllDone;
}

std::vector<std::string> fieldsOf(const std::string& line) {
    std::vector<std::string> fields;
    for (std::size_t start = 0; start <= line.size();) {
        const std::size_t end = std::min(line.find('\t', start), line.size());
        fields.push_back(line.substr(start, end - start));
        start = end + 1;
    }
    return fields;
}

} // namespace

std::string field(const std::string& text) {
    return onOneLine(text);
}

std::string duplicatesAsJson(const std::string& lines) {
    std::vector<Json> objects;
    for (std::size_t start = 0; start < lines.size();) {
        const std::size_t end = std::min(lines.find('\n', start), lines.size());
        const std::vector<std::string> fields = fieldsOf(lines.substr(start, end - start));
        start = end + 1;
        if (fields.size() < 5)
            continue;
        objects.push_back(
            Json::object({{"number", Json::number(numberIn(fields[0]))},
                          {"identifier", Json::text(fields[1])},
                          {"name", Json::text(fields[2])},
                          {"version", Json::text(fields[3])},
                          {"archive", fields[4].empty() ? Json::none() : Json::text(fields[4])}}));
    }
    return Json::array(objects).spelled() + "\n";
}

ExitStatus duplicate(Session& session, const Request& request) {
    session.settings.values.name = request.name;
    session.settings.values.color = request.color;
    session.settings.values.isPlain = request.isPlain;
    session.alerts.setReplies(request.saysYes ? Reply::Yes : Reply::Ask,
                              replyToOffers(request, session.console));
    std::string all;
    std::string standing;
    const auto give = [&](const std::string& line) {
        all += line;
        standing += " " + fieldsOf(line)[1];
        if (!request.asJson)
            session.console.give(line);
    };
    ExitStatus status = AllDone;
    for (const Source& source : sourcesNamed(session, request.sources)) {
        ExitStatus ended = source.isAmbiguous ? WrongUse : SomethingFailed;
        if (!source.mistake.empty()) {
            session.console.refuse(source.mistake);
        } else {
            session.settings.values.identifier = source.identifier;
            ended = duplicateOne(session, source.identifier, request.count, give);
        }
        status = std::max(status, ended);
        if (session.isStopped() || session.alerts.wasUnanswered())
            break;
    }
    if (session.isStopped() && !session.console.isPassing())
        session.console.refuse(standing.empty() ? "stopped; nothing was made"
                                                : "stopped; made before that:" + standing);
    if (request.asJson)
        session.console.give(duplicatesAsJson(all));
    return status;
}

} // namespace dubrix
