#include "device/confine/Request.h"

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace dubrix {

namespace {

constexpr const char* usage =
    "Usage: confine [OPTION...] -- [BUBBLEWRAP-OPTION... --] COMMAND [ARGUMENT...]\n"
    "       confine --why-not\n"
    "\n"
    "  --bare                   without a namespace; no bubblewrap options then\n"
    "  --web-pages              for a command that makes namespaces for web pages\n"
    "  --keep NUMBER            leave this descriptor open; may be repeated\n"
    "  --input                  pass the standard input on\n"
    "  --stoppable              ask the command for its end by closing descriptor 11; a signal "
    "that\n"
    "                           comes again ends it\n"
    "  --output WAY             visible, shell or progress\n"
    "  --terminal               leave the standard streams and the terminal to the command\n"
    "  --device DIR             the device's folder, for --asked-archive and --asked-folder\n"
    "  --archive FILE PLACE     show the file on the device, read-only\n"
    "  --folder DIR PLACE       the same for a folder\n"
    "  --asked-archive FILE PLACE, --asked-folder DIR PLACE\n"
    "                           the same where a window asks for it; ends with 66 when refused\n"
    "  --result FILE            what the command writes to descriptor 10 becomes this file\n"
    "  --new-result FILE        the same under a name that is free; prints it\n"
    "  --why-not                why no namespace can be made: ends with 0 when the system forbids "
    "it\n"
    "                           for good\n";

constexpr int mistaken = 2;

[[noreturn]] void refuse(const std::string& text) {
    std::fprintf(stderr, "confine: %s\n\n%s", text.c_str(), usage);
    std::exit(mistaken);
}

/// Goes through the words of the command line.
class Words {
public:
    explicit Words(std::span<char* const> words) : left_(words) {}
    bool done() const { return left_.empty(); }
    std::string next() {
        if (left_.empty())
            refuse("an argument is missing");
        const std::string word = left_.front();
        left_ = left_.subspan(1);
        return word;
    }

private:
    std::span<char* const> left_;
};

int descriptorIn(const std::string& text) {
    int number = -1;
    const char* const end = text.data() + text.size();
    if (std::from_chars(text.data(), end, number).ptr != end || number < 0)
        refuse("no descriptor: " + text);
    return number;
}

Shown shownAs(const std::string& way) {
    if (way == "visible")
        return Shown::Visible;
    if (way == "shell")
        return Shown::VisibleOnTerminal;
    if (way == "progress")
        return Shown::Progress;
    refuse("no such output: " + way);
}

void takeOption(Request& request, const std::string& option, Words& words) {
    const auto share = [&request, &words](Given kind, bool asked) {
        const std::string path = words.next();
        request.shared.push_back({path, words.next(), kind, asked});
    };
    if (option == "--bare")
        request.bare = true;
    else if (option == "--terminal")
        request.terminal = true;
    else if (option == "--input")
        request.input = true;
    else if (option == "--stoppable")
        request.stoppable = true;
    else if (option == "--web-pages")
        request.whom = Confined::WebPages;
    else if (option == "--output")
        request.shown = shownAs(words.next());
    else if (option == "--keep")
        request.kept.push_back(descriptorIn(words.next()));
    else if (option == "--device")
        request.device = words.next();
    else if (option == "--archive" || option == "--asked-archive")
        share(Given::Archive, option == "--asked-archive");
    else if (option == "--folder" || option == "--asked-folder")
        share(Given::Folder, option == "--asked-folder");
    else if (option == "--result" || option == "--new-result") {
        request.result = words.next();
        if (option == "--new-result")
            request.existing = ResultFile::Existing::Kept;
    } else
        refuse("no such option: " + option);
}

} // namespace

Request parseRequest(std::span<char* const> given) {
    Words words(given);
    Request request;
    for (std::string word = words.next(); word != "--"; word = words.next())
        takeOption(request, word, words);
    if (!request.bare)
        for (std::string word = words.next(); word != "--"; word = words.next())
            request.namespaceOptions.push_back(word);
    request.command.push_back(words.next());
    while (!words.done())
        request.command.push_back(words.next());
    return request;
}

} // namespace dubrix
