#include "terminal/Commands.h"

#include "engine/DXShared.h"
#include "formats/lists/PropertyList.h"
#include "formats/text/PlainText.h"
#include "terminal/Sources.h"

#include <variant>

namespace dubrix {

namespace {

PropertyList stored(const Session& session) {
    return dictionaryWithContentsOfFile(session.posix.files, settingsFilePath)
        .value_or(PropertyList::dictionary());
}

bool isOn(const PropertyList& settings, std::string_view key) {
    const auto value = settings.valueForKey(key);
    return value && value->booleanValue();
}

std::string color(const PropertyList& settings) {
    const auto part = [&settings](std::string_view key) {
        const auto value = settings.valueForKey(key);
        return value ? value->floatValue() : 0.0F;
    };
    return textOf({part("Red"), part("Green"), part("Blue")});
}

std::optional<bool> switchIn(const std::string& text) {
    const std::string word = lowerCase(text);
    if (word == "on" || word == "yes" || word == "true" || word == "1")
        return true;
    if (word == "off" || word == "no" || word == "false" || word == "0")
        return false;
    return std::nullopt;
}

using Values = std::vector<std::pair<std::string, PropertyList>>;

/// What the screens store for one value, or a sentence on what is wrong with it.
std::variant<Values, std::string> valuesFor(const Session& session, const std::string& key,
                                            const std::string& value) {
    if (key == "application") {
        const Source source = sourceNamed(session, value);
        if (!source.mistake.empty())
            return source.mistake;
        const std::string name = valueOf(session, "displayName", source.identifier);
        return Values{{"bundleID", PropertyList::string(source.identifier)},
                      {"appName", PropertyList::string(name)}};
    }
    if (key == "name")
        return Values{{"customText", PropertyList::string(value)}};
    if (key == "color") {
        const auto tint = colorIn(value);
        if (!tint)
            return "no color: " + value + " (#rrggbb, r,g,b or a name is one)";
        return Values{{"Red", PropertyList::real((*tint)[0])},
                      {"Green", PropertyList::real((*tint)[1])},
                      {"Blue", PropertyList::real((*tint)[2])}};
    }
    const auto on = switchIn(value);
    if (!on)
        return key + " is on or off, not " + value;
    return Values{
        {key == "name-on" ? "customNameToggle" : "customColorToggle", PropertyList::boolean(*on)}};
}

ExitStatus store(Session& session, const std::string& key, const std::string& value) {
    const auto found = valuesFor(session, key, value);
    if (const auto* const mistake = std::get_if<std::string>(&found)) {
        session.console.refuse(*mistake);
        return WrongUse;
    }
    Silence log;
    DXShared shared(session.posix.files, log);
    for (const auto& [name, wanted] : std::get<Values>(found)) {
        shared.addKey(name, wanted);
        if (shared.retrieveValueForKey(name) != wanted) {
            session.console.refuse(std::string("the settings cannot be written: ") +
                                   settingsFilePath);
            return SomethingFailed;
        }
    }
    return AllDone;
}

} // namespace

ExitStatus settings(Session& session, const Request& request) {
    if (!request.key.empty())
        return store(session, request.key, *request.value);
    const PropertyList settings = stored(session);
    const std::string application = settings.stringForKey("bundleID").value_or("");
    const std::string name = settings.stringForKey("customText").value_or("");
    const bool nameOn = isOn(settings, "customNameToggle");
    const bool colorOn = isOn(settings, "customColorToggle");
    if (request.asJson) {
        session.console.give(Json::object({{"application", Json::text(application)},
                                           {"name", Json::text(name)},
                                           {"name-on", Json::boolean(nameOn)},
                                           {"color", Json::text(color(settings))},
                                           {"color-on", Json::boolean(colorOn)}})
                                 .spelled() +
                             "\n");
        return AllDone;
    }
    session.console.give("application\t" + field(application) + "\nname\t" + field(name) +
                         "\nname-on\t" + (nameOn ? "on" : "off") + "\ncolor\t" + color(settings) +
                         "\ncolor-on\t" + (colorOn ? "on" : "off") + "\n");
    return AllDone;
}

} // namespace dubrix
