#include "driver/script/ScriptStep.h"

#include "formats/text/Decimal.h"

#include <array>
#include <utility>

namespace dubrix {

namespace {

constexpr std::string_view blanks = " \t\r";

std::string_view trimmed(std::string_view text) {
    const std::size_t start = text.find_first_not_of(blanks);
    if (start == std::string_view::npos)
        return {};
    return text.substr(start, text.find_last_not_of(blanks) - start + 1);
}

std::string_view takeWord(std::string_view& text) {
    const std::string_view word = text.substr(0, text.find_first_of(blanks));
    text = trimmed(text.substr(word.size()));
    return word;
}

/// Takes a quoted text off the front; nothing when its closing quote is missing.
std::optional<std::string> takeQuoted(std::string_view& text) {
    std::string taken;
    for (std::size_t at = 1; at < text.size(); ++at) {
        if (text[at] == '"') {
            text = trimmed(text.substr(at + 1));
            return taken;
        }
        if (text[at] == '\\' && at + 1 < text.size()) {
            ++at;
            taken += text[at] == 'n' ? '\n' : text[at];
        } else {
            taken += text[at];
        }
    }
    return std::nullopt;
}

std::optional<double> seconds(std::string_view text) {
    double value = 0;
    const auto [end, error] = readDecimal(text, value);
    const bool isInRange = value <= 3600;
    if (error != std::errc() || end != text.data() + text.size() || !isInRange)
        return std::nullopt;
    return value;
}

struct VerbName {
    std::string_view name;
    ScriptStep::Verb verb;
};

constexpr std::array verbs = {
    VerbName{"tap", ScriptStep::Verb::Tap},       VerbName{"type", ScriptStep::Verb::Type},
    VerbName{"wait", ScriptStep::Verb::Wait},     VerbName{"gone", ScriptStep::Verb::Gone},
    VerbName{"expect", ScriptStep::Verb::Expect}, VerbName{"absent", ScriptStep::Verb::Absent},
    VerbName{"shot", ScriptStep::Verb::Shot},     VerbName{"hold", ScriptStep::Verb::Hold},
    VerbName{"drop", ScriptStep::Verb::Drop},
};

/// Cuts a number of seconds off the end of an unquoted text.
void cutSeconds(std::string_view& text, ScriptStep& step) {
    const std::size_t lastBlank = text.find_last_of(blanks);
    if (lastBlank == std::string_view::npos)
        return;
    if (const auto value = seconds(text.substr(lastBlank + 1))) {
        step.seconds = *value;
        text = trimmed(text.substr(0, lastBlank));
    }
}

std::string parseArguments(std::string_view rest, ScriptStep& step) {
    using Verb = ScriptStep::Verb;
    const bool quoted = rest.starts_with('"');
    if (quoted) {
        const auto target = takeQuoted(rest);
        if (!target)
            return "a closing quote is missing";
        step.target = *target;
    } else if (step.verb == Verb::Type) {
        step.target = takeWord(rest);
    } else {
        if (step.waits())
            cutSeconds(rest, step);
        step.target = std::exchange(rest, {});
    }
    if (step.target.empty())
        return "a name, text or file is missing";
    if (step.verb == Verb::Type && rest.starts_with('"')) {
        const auto text = takeQuoted(rest);
        if (!text)
            return "a closing quote is missing";
        step.text = *text;
    } else if (step.verb == Verb::Type) {
        step.text = std::exchange(rest, {});
    } else if (step.waits() && !rest.empty()) {
        const auto value = seconds(std::exchange(rest, {}));
        if (!value)
            return "the seconds are not a number from 0 to 3600";
        step.seconds = *value;
    }
    return rest.empty() ? "" : "there is more on the line than the step takes";
}

} // namespace

ScriptLine parseScriptLine(std::string_view line) {
    std::string_view rest = trimmed(line);
    if (rest.empty() || rest.starts_with('#'))
        return {};
    const std::string_view word = takeWord(rest);
    for (const VerbName& known : verbs) {
        if (known.name != word)
            continue;
        ScriptStep step{.verb = known.verb};
        std::string error = parseArguments(rest, step);
        if (!error.empty())
            return {.error = std::move(error)};
        return {.step = std::move(step)};
    }
    return {.error = "there is no step named '" + std::string(word) + "'"};
}

} // namespace dubrix
