// The application without a window: what the launcher's commands duplicate, update, status,
// settings and list run on the device.

#include "formats/text/PlainText.h"
#include "terminal/Commands.h"
#include "terminal/Ending.h"

#include <charconv>
#include <iostream>
#include <iterator>

namespace {

using namespace dubrix;

constexpr const char* usage =
    "Usage: dubrix-terminal [OPTION...] COMMAND [ARGUMENT...]\n"
    "       dubrix-terminal --plan COMMAND [ARGUMENT...]\n"
    "       dubrix-terminal --json\n"
    "Start it with the command 'dubrix'.\n"
    "\n"
    "  --root DIR     the device's root folder\n"
    "  --answered     somebody answers questions at the standard input\n"
    "  --progress     write lines \"progress PERCENT TITLE\"\n"
    "  --passing      what is made does not outlive the run: say nothing of it when stopped\n"
    "  --stop NUMBER  stop the work when this descriptor can be read or is closed\n"
    "  --plan         only read the command line, and say how it is to be carried out\n"
    "  --json         write the lines of duplicate that come at the standard input as JSON\n";

struct Options {
    std::string root = "/";
    Console::Ways ways;
    bool isPlan = false;
};

int complain(const std::string& sentence) {
    std::cerr << "dubrix: " << onOneLine(sentence) << " (see dubrix --help)\n";
    return WrongUse;
}

/// Takes the program's own options from the front of `words`; false when they make no sense.
bool takeOptions(std::span<const std::string>& words, Options& options) {
    for (; !words.empty() && words.front().starts_with("--"); words = words.subspan(1)) {
        const std::string& option = words.front();
        const std::string value = words.size() > 1 ? words[1] : "";
        if (option == "--answered")
            options.ways.isAnswered = true;
        else if (option == "--progress")
            options.ways.drawsProgress = true;
        else if (option == "--passing")
            options.ways.isPassing = true;
        else if (option == "--plan")
            options.isPlan = true;
        else if (option == "--root" && !value.empty())
            options.root = value;
        else if (option != "--stop" ||
                 std::from_chars(value.data(), value.data() + value.size(), options.ways.stop).ec !=
                     std::errc())
            return false;
        if (option == "--root" || option == "--stop")
            words = words.subspan(1);
    }
    return true;
}

ExitStatus carryOut(const Request& request, const Options& options,
                    const std::filesystem::path& programs) {
    Console::Ways ways = options.ways;
    ways.isQuiet = request.isQuiet;
    ways.isVerbose = request.isVerbose;
    Console console(ways);
    Session session(options.root, programs / "device-paths.bash", console);
    const EndByStopping ending(session.posix.commands, options.ways.stop);
    switch (request.command) {
    case Request::Command::Duplicate:
        return duplicate(session, request);
    case Request::Command::Update:
        return update(session, request);
    case Request::Command::Status:
        return showStatus(session, request);
    case Request::Command::Settings:
        return settings(session, request);
    case Request::Command::List:
        return list(session, request);
    }
    return WrongUse;
}

} // namespace

int main(int count, char* arguments[]) {
    const std::vector<std::string> all(arguments + 1, arguments + count);
    if (all == std::vector<std::string>{"--json"}) {
        std::cout << duplicatesAsJson(std::string(std::istreambuf_iterator(std::cin), {}));
        return AllDone;
    }
    std::span<const std::string> words(all);
    Options options;
    if (!takeOptions(words, options) || words.empty()) {
        std::cerr << usage;
        return WrongUse;
    }
    const auto parsed = parseRequest(words);
    if (const auto* const mistake = std::get_if<std::string>(&parsed))
        return complain(*mistake);
    const Request& request = std::get<Request>(parsed);
    if (options.isPlan) {
        std::cout << planOf(request);
        return AllDone;
    }
    return carryOut(request, options, std::filesystem::path(arguments[0]).parent_path());
}
