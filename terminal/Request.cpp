#include "terminal/Request.h"

#include "formats/text/PlainText.h"

#include <algorithm>
#include <charconv>
#include <functional>

namespace dubrix {

namespace {

using Command = Request::Command;

constexpr int mostAtOnce = 100;

struct CommandName {
    std::string_view name;
    Command command;
    /// The options that it has, each with a blank before and after it.
    std::string_view options;
};

constexpr std::array commands = {
    CommandName{"duplicate", Command::Duplicate,
                " --name --color --plain --count --update --output --yes --json --quiet"
                " --verbose "},
    CommandName{"update", Command::Update, " --all --yes --json --quiet --verbose "},
    CommandName{"status", Command::Status, " --json "},
    CommandName{"settings", Command::Settings, " --json "},
    CommandName{"list", Command::List, " --json "},
};

/// A sentence on what is wrong; empty for nothing.
using Mistake = std::string;

Mistake takeCount(Request& request, const std::string& value) {
    const char* const end = value.data() + value.size();
    const auto read = std::from_chars(value.data(), end, request.count);
    const bool isCount = read.ec == std::errc() && read.ptr == end && request.count >= 1 &&
                         request.count <= mostAtOnce;
    return isCount ? "" : "--count needs a number from 1 to 100";
}

Mistake takeOffers(Request& request, const std::string& value) {
    if (value != "yes" && value != "no" && value != "ask")
        return "--update needs yes, no or ask";
    request.offers = value == "yes"  ? Request::Offers::Accept
                     : value == "no" ? Request::Offers::Decline
                                     : Request::Offers::Ask;
    return {};
}

Mistake takeColor(Request& request, const std::string& value) {
    request.color = colorIn(value);
    return request.color ? "" : "no color: " + value + " (#rrggbb, r,g,b or a name is one)";
}

struct Option {
    std::string_view name;
    std::function<Mistake(Request&, const std::string&)> take;
    bool hasValue = true;
};

Option flag(std::string_view name, bool Request::* member) {
    return {name,
            [member](Request& request, const std::string&) {
                request.*member = true;
                return Mistake();
            },
            false};
}

const std::vector<Option>& options() {
    static const std::vector<Option> all = {
        {"--name",
         [](Request& request, const std::string& value) {
             request.name = value;
             return Mistake();
         }},
        {"--color", takeColor},
        {"--count", takeCount},
        {"--update", takeOffers},
        {"--output",
         [](Request& request, const std::string& value) {
             request.output = value;
             return value.empty() ? Mistake("--output needs a folder or a file") : Mistake();
         }},
        flag("--plain", &Request::isPlain),
        flag("--yes", &Request::saysYes),
        flag("--all", &Request::ofAll),
        flag("--json", &Request::asJson),
        flag("--quiet", &Request::isQuiet),
        flag("--verbose", &Request::isVerbose),
    };
    return all;
}

/// Takes the option at the front of `words`, with its value.
Mistake takeOption(Request& request, const CommandName& command,
                   std::span<const std::string>& words) {
    const std::string word = words.front() == "-y" ? "--yes" : words.front();
    words = words.subspan(1);
    const std::size_t end = std::min(word.find('='), word.size());
    const std::string name = word.substr(0, end);
    const auto option = std::ranges::find(options(), name, &Option::name);
    if (option == options().end() || command.options.find(" " + name + " ") == std::string::npos)
        return "unknown option of " + std::string(command.name) + ": " + name;
    if (!option->hasValue)
        return end == word.size() ? option->take(request, "") : name + " takes no value";
    if (end < word.size())
        return option->take(request, word.substr(end + 1));
    if (words.empty())
        return name + " needs a value";
    const std::string& value = words.front();
    words = words.subspan(1);
    return option->take(request, value);
}

void takeArgument(Request& request, const std::string& word) {
    const bool isArchive = request.command == Command::Duplicate && word.size() > 4 &&
                           lowerCase(std::string_view(word).substr(word.size() - 4)) == ".ipa";
    if (request.command == Command::Settings && request.key.empty())
        request.key = word;
    else if (request.command == Command::Settings && !request.value)
        request.value = word;
    else
        (isArchive ? request.archives : request.sources).push_back(word);
}

bool isSingle(const Request& request) {
    return request.count == 1 && request.archives.size() + request.sources.size() <= 1;
}

/// What cannot be asked for together.
Mistake contradictionIn(const Request& request) {
    if (request.isPlain && (request.name || request.color))
        return "--plain goes with neither --name nor --color";
    if (request.isQuiet && request.isVerbose)
        return "--quiet and --verbose contradict each other";
    if (request.ofAll && !request.sources.empty())
        return "--all goes without sources";
    if (!request.archives.empty() && request.output.empty())
        return "an archive needs --output: nothing else is left of what is made of it";
    if (!request.archives.empty() && request.offers)
        return "--update is for installed applications: an archive has no duplicates yet";
    if (request.command == Command::List && !request.sources.empty())
        return "list takes no arguments";
    if (request.command != Command::Settings)
        return {};
    if (!request.sources.empty())
        return "settings takes a key and a value";
    constexpr std::array keys = {"application", "name", "name-on", "color", "color-on"};
    if (!request.key.empty() && std::ranges::find(keys, request.key) == keys.end())
        return "no setting: " + request.key +
               " (application, name, name-on, color and color-on are)";
    return !request.key.empty() && !request.value ? "settings needs a value for " + request.key
                                                  : Mistake();
}

} // namespace

std::variant<Request, std::string> parseRequest(std::span<const std::string> words) {
    Request request;
    const auto command = words.empty()
                             ? commands.end()
                             : std::ranges::find(commands, words.front(), &CommandName::name);
    if (command == commands.end())
        return words.empty() ? "a command is missing" : "unknown command: " + words.front();
    request.command = command->command;
    words = words.subspan(1);
    bool optionsEnded = false;
    while (!words.empty()) {
        const std::string& word = words.front();
        Mistake mistake;
        if (!optionsEnded && word.size() > 1 && word[0] == '-' && word != "--") {
            mistake = takeOption(request, *command, words);
        } else {
            if (word == "--" && !optionsEnded)
                optionsEnded = true;
            else if (word.empty() && request.command != Command::Settings)
                mistake = "an application has no empty name";
            else
                takeArgument(request, word);
            words = words.subspan(1);
        }
        if (!mistake.empty())
            return mistake;
    }
    if (Mistake mistake = contradictionIn(request); !mistake.empty())
        return mistake;
    return request;
}

std::string planOf(const Request& request) {
    std::string plan;
    const auto add = [&plan](std::string_view key, std::string_view value) {
        plan.append(key).push_back('\0');
        plan.append(value).push_back('\0');
    };
    const auto word = [&add](std::string_view text) { add("word", text); };
    for (const std::string& archive : request.archives)
        add("archive", archive);
    if (!request.output.empty())
        add("output", request.output);
    const std::pair<const char*, bool> facts[] = {{"single", isSingle(request)},
                                                  {"json", request.asJson},
                                                  {"yes", request.saysYes},
                                                  {"quiet", request.isQuiet}};
    for (const auto& [key, holds] : facts)
        if (holds)
            add(key, "yes");
    word(std::ranges::find(commands, request.command, &CommandName::command)->name);
    const std::pair<const char*, bool> flags[] = {{"--plain", request.isPlain},
                                                  {"--yes", request.saysYes},
                                                  {"--all", request.ofAll},
                                                  {"--quiet", request.isQuiet},
                                                  {"--verbose", request.isVerbose}};
    for (const auto& [name, isGiven] : flags)
        if (isGiven)
            word(name);
    if (request.name)
        word("--name=" + *request.name);
    if (request.color)
        word("--color=" + textOf(*request.color));
    if (request.count != 1)
        word("--count=" + std::to_string(request.count));
    if (request.offers)
        word(*request.offers == Request::Offers::Accept    ? "--update=yes"
             : *request.offers == Request::Offers::Decline ? "--update=no"
                                                           : "--update=ask");
    if (!request.key.empty())
        add("argument", request.key);
    if (request.value)
        add("argument", *request.value);
    for (const std::string& source : request.sources)
        add("argument", source);
    return plan;
}

} // namespace dubrix
