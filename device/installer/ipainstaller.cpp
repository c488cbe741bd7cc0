#include "device/archive/Interruption.h"
#include "device/installer/Report.h"
#include "formats/text/PlainText.h"

#include <charconv>
#include <csignal>
#include <cstdio>
#include <optional>
#include <span>
#include <string_view>
#include <unistd.h>

namespace {

using dubrix::Installer;
using dubrix::Interruption;
using dubrix::onOneLine;
using dubrix::Report;

constexpr int failed = 1;
constexpr int mistaken = 2;
constexpr int ofAnotherKind = 3;

constexpr const char* usage =
    "Usage: ipainstaller [--root DIR] COMMAND\n"
    "\n"
    "  -f FILE.ipa…              install applications, in place of earlier versions\n"
    "  -l                        list installed applications: identifier, name, version, path\n"
    "  -u IDENTIFIER             remove an application\n"
    "  -U IDENTIFIER             the same, so that it can be put back until the next removal\n"
    "  -r IDENTIFIER             put back what was removed by -U\n"
    "  -d                        drop what could be put back\n"
    "  -b IDENTIFIER FILE.ipa    save an application as an archive\n"
    "  --                        what follows are files and identifiers, even \"-l\"\n"
    "  --descriptor NUMBER       with -b: write the archive into this open file, which must be "
    "empty;\n"
    "                            FILE.ipa is what messages call it\n"
    "  --root DIR                work on the device in the folder DIR instead of \"/\"\n"
    "  --progress lines          how far -f and -b are, on the standard output: \"progress 0 "
    "TITLE\" at\n"
    "                            the beginning of each file and \"progress PERCENT\" at each "
    "step;\n"
    "                            several archives are summed up in a last line\n"
    "  --report fields           what came of it as lines of fields, with tabs between, on the "
    "standard\n"
    "                            output: \"installed\", identifier, name and version; "
    "\"replaced\", the\n"
    "                            same and the earlier version; \"removed\", \"kept\" or "
    "\"back\" and\n"
    "                            identifier; \"saved\" and FILE.ipa; \"failed\" and the reason\n"
    "  --help                    show this text\n"
    "\n"
    "Status: 0 done, 1 failed, 2 wrong command line, 3 the one FILE.ipa is no archive of an\n"
    "application at all.\n";

struct Request {
    std::string root = "/";
    std::string command;
    std::vector<std::string> arguments;
    std::optional<int> descriptor;
    Report report;
};

/// The number of a descriptor that is none of the standard streams.
std::optional<int> descriptorOf(std::string_view word) {
    int number = -1;
    const auto [end, error] = std::from_chars(word.begin(), word.end(), number);
    const bool fits = error == std::errc() && end == word.end() && number > STDERR_FILENO;
    return fits ? std::optional(number) : std::nullopt;
}

/// Takes the option at `words[index]`, and its value; false when it is none or lacks its value.
bool takeOption(Request& request, std::span<char* const> words, std::size_t& index) {
    const std::string_view option = words[index];
    const std::string_view value = index + 1 < words.size() ? words[index + 1] : "";
    if (option == "--root" && !value.empty())
        request.root = value;
    else if (option == "--progress" && value == "lines")
        request.report.showsProgress = true;
    else if (option == "--report" && value == "fields")
        request.report.form = Report::Form::Fields;
    else if (option == "--descriptor" && descriptorOf(value))
        request.descriptor = descriptorOf(value);
    else
        return false;
    ++index;
    return true;
}

bool isComplete(const Request& request) {
    const std::size_t count = request.arguments.size();
    if (request.descriptor && request.command != "-b")
        return false;
    const std::string& command = request.command;
    if (command == "-u" || command == "-U" || command == "-r")
        return count == 1;
    return (command == "-f" && count >= 1) || (command == "-b" && count == 2) ||
           ((command == "-l" || command == "-d") && count == 0);
}

/// What is asked for; nothing when the command line makes no sense.
std::optional<Request> parse(std::span<char* const> words) {
    Request request;
    bool optionsEnded = false;
    for (std::size_t index = 0; index < words.size(); ++index) {
        const std::string word = words[index];
        constexpr std::string_view commands = "-f -l -u -U -r -d -b ";
        const bool isCommand = word.size() == 2 && commands.find(word + " ") != commands.npos;
        if (word == "--" && !optionsEnded)
            optionsEnded = true;
        else if (word == "--help" && !optionsEnded)
            return Request{"/", word, {}, {}, {}};
        else if (isCommand && !optionsEnded && request.command.empty())
            request.command = word;
        else if (!request.command.empty() && !word.empty() && (optionsEnded || word[0] != '-'))
            request.arguments.push_back(word);
        else if (optionsEnded || !takeOption(request, words, index))
            return std::nullopt;
    }
    return isComplete(request) ? std::optional(request) : std::nullopt;
}

int report(const Request& request, const dubrix::Failure& failure) {
    request.report.failed(failure);
    return failed;
}

int installAll(Installer& installer, Request& request) {
    const std::vector<std::string>& files = request.arguments;
    std::vector<std::string> refused;
    bool isOfAnotherKind = false;
    for (std::size_t index = 0; index < files.size(); ++index) {
        request.report.begin(files[index], index, files.size());
        auto installed = installer.install(files[index]);
        if (installed) {
            request.report.installed(*installed);
        } else {
            refused.push_back(dubrix::shownName(files[index]));
            isOfAnotherKind = installed.failure().isOfAnotherKind;
            request.report.failed(installed.failure());
        }
    }
    if (files.size() > 1)
        request.report.sumUp(files.size(), refused);
    if (files.size() == 1 && isOfAnotherKind)
        return ofAnotherKind;
    return refused.empty() ? 0 : failed;
}

int list(const Installer& installer, const Request& request) {
    auto applications = installer.list();
    if (!applications)
        return report(request, applications.failure());
    for (const Installer::Application& application : *applications)
        std::printf("%s\t%s\t%s\t%s\n", onOneLine(application.identifier).c_str(),
                    onOneLine(application.name).c_str(), onOneLine(application.version).c_str(),
                    onOneLine(application.path).c_str());
    return 0;
}

int save(const Installer& installer, Request& request) {
    const std::string& identifier = request.arguments[0];
    const std::string& file = request.arguments[1];
    // What would be left of the archive is taken away first.
    Interruption::note();
    request.report.begin(file);
    auto done = request.descriptor ? installer.exportTo(identifier, file, *request.descriptor)
                                   : installer.exportTo(identifier, file);
    if (!done) {
        request.report.failed(done.failure());
        Interruption::follow();
        return failed;
    }
    request.report.saved(identifier, file);
    return 0;
}

/// By putting back what was removed, or by giving it up.
int endRemoval(Installer& installer, const Request& request) {
    const bool isUndone = request.command == "-r";
    const auto done =
        isUndone ? installer.putBack(request.arguments[0]) : installer.forgetRemoved();
    if (!done)
        return report(request, done.failure());
    if (isUndone)
        request.report.putBack(request.arguments[0]);
    return 0;
}

int carryOut(Request& request) {
    std::error_code error;
    if (!std::filesystem::is_directory(request.root, error))
        return report(request, {request.root + " is not a folder"});
    Installer installer(
        request.root,
        [&request](std::uint64_t done, std::uint64_t total) {
            request.report.progress(done, total);
        },
        [&request] { request.report.waits(); });
    if (request.command == "-f")
        return installAll(installer, request);
    if (request.command == "-l")
        return list(installer, request);
    if (request.command == "-b")
        return save(installer, request);
    if (request.command == "-r" || request.command == "-d")
        return endRemoval(installer, request);
    const std::string& identifier = request.arguments[0];
    using Removal = Installer::Removal;
    const auto removed = installer.uninstall(identifier, request.command == "-U" ? Removal::Undoable
                                                                                 : Removal::Final);
    if (!removed)
        return report(request, removed.failure());
    request.report.removed(identifier, *removed);
    return 0;
}

} // namespace

int main(int count, char* words[]) {
    // A file that may not become so large is a failure like another.
    std::signal(SIGXFSZ, SIG_IGN);
    std::optional<Request> request =
        parse(std::span<char* const>(words, static_cast<std::size_t>(count)).subspan(1));
    if (!request) {
        std::fprintf(stderr, "ipainstaller: this command line makes no sense\n\n%s", usage);
        return mistaken;
    }
    int status = 0;
    if (request->command == "--help")
        std::fputs(usage, stdout);
    else
        status = carryOut(*request);
    if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0)
        return report(*request, {"cannot write to the standard output"});
    return status;
}
