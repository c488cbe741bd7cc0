#include "device/Installer.h"
#include "device/Interruption.h"
#include "device/PlainText.h"
#include "device/ProgressBar.h"

#include <charconv>
#include <csignal>
#include <cstdio>
#include <optional>
#include <span>
#include <string_view>
#include <unistd.h>
#include <utility>

namespace {

using dubrix::Installer;
using dubrix::Interruption;
using dubrix::onOneLine;

constexpr int failed = 1;
constexpr int mistaken = 2;
constexpr int ofAnotherKind = 3;

constexpr const char* usage =
    "Usage: ipainstaller [--root DIR] COMMAND\n"
    "\n"
    "  -f FILE.ipa…              install applications, in place of earlier versions\n"
    "  -l                        list installed applications: identifier, name, version, path\n"
    "  -u IDENTIFIER             remove an application\n"
    "  -b IDENTIFIER FILE.ipa    save an application as an archive\n"
    "  --                        what follows are files and identifiers, even \"-l\"\n"
    "  --descriptor NUMBER       with -b: write the archive into this open file, which must be "
    "empty;\n"
    "                            FILE.ipa is what messages call it\n"
    "  --root DIR                work on the device in the folder DIR instead of \"/\"\n"
    "  --progress bar|lines      how far -f and -b are: a bar on a terminal at the standard "
    "error,\n"
    "                            or a line \"progress PERCENT\" at each step on the standard "
    "output;\n"
    "                            several archives are summed up in a last line\n"
    "  --help                    show this text\n"
    "\n"
    "Status: 0 done, 1 failed, 2 wrong command line, 3 the one FILE.ipa is no archive of an\n"
    "application at all.\n";

struct Request {
    std::string root = "/";
    std::string command;
    std::vector<std::string> arguments;
    /// "bar", "lines", or empty for none.
    std::string progress;
    std::optional<int> descriptor;
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
    else if (option == "--progress" && (value == "bar" || value == "lines"))
        request.progress = value;
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
    return (request.command == "-f" && count >= 1) || (request.command == "-l" && count == 0) ||
           (request.command == "-u" && count == 1) || (request.command == "-b" && count == 2);
}

/// What is asked for; nothing when the command line makes no sense.
std::optional<Request> parse(std::span<char* const> words) {
    Request request;
    bool optionsEnded = false;
    for (std::size_t index = 0; index < words.size(); ++index) {
        const std::string word = words[index];
        const bool isCommand = word == "-f" || word == "-l" || word == "-u" || word == "-b";
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

/// Shows how far the work on one file after the other is, in the way that was asked for.
class ProgressReport {
public:
    explicit ProgressReport(const std::string& way) : asLines_(way == "lines") {
        if (way == "bar")
            bar_.emplace(STDERR_FILENO);
    }

    void start(const std::string& title) {
        percent_ = 0;
        if (bar_)
            bar_->start(title);
    }
    void show(std::uint64_t done, std::uint64_t total) {
        if (bar_)
            bar_->show(done, total);
        if (!asLines_ || total == 0)
            return;
        const auto percent =
            static_cast<unsigned>(100.0 * static_cast<double>(done) / static_cast<double>(total));
        if (percent == std::exchange(percent_, percent))
            return;
        std::printf("progress %u\n", percent);
        std::fflush(stdout);
    }
    /// Makes way for a message.
    void clear() {
        if (bar_)
            bar_->clear();
    }

private:
    bool asLines_;
    unsigned percent_ = 0;
    std::optional<dubrix::ProgressBar> bar_;
};

int report(const dubrix::Failure& failure) {
    std::fprintf(stderr, "ipainstaller: %s\n", onOneLine(failure.text).c_str());
    return failed;
}

void say(const std::string& line) {
    std::printf("%s\n", onOneLine(line).c_str());
}

std::string fileName(const std::string& path) {
    return onOneLine(std::filesystem::path(path).filename().native());
}

void sumUp(std::size_t installed, const std::vector<std::string>& refused) {
    std::string line = "Installed " + std::to_string(installed) + " of " +
                       std::to_string(installed + refused.size()) + " applications";
    for (const std::string& name : refused)
        line.append(&name == &refused.front() ? "; not installed: " : ", ").append(name);
    say(line);
}

int installAll(Installer& installer, ProgressReport& progress, const Request& request) {
    const std::vector<std::string>& files = request.arguments;
    std::vector<std::string> refused;
    bool isOfAnotherKind = false;
    for (std::size_t index = 0; index < files.size(); ++index) {
        const std::string count = files.size() == 1 ? ""
                                                    : std::to_string(index + 1) + " of " +
                                                          std::to_string(files.size()) + ": ";
        progress.start(count + fileName(files[index]));
        auto installed = installer.install(files[index]);
        progress.clear();
        if (installed) {
            say("Installed " + *installed->identifier + " (" + installed->displayName + ")");
        } else {
            refused.push_back(fileName(files[index]));
            isOfAnotherKind = installed.failure().isOfAnotherKind;
            report(installed.failure());
        }
        std::fflush(stdout); // line by line, also into a pipe
    }
    if (!request.progress.empty() && files.size() > 1)
        sumUp(files.size() - refused.size(), refused);
    if (files.size() == 1 && isOfAnotherKind)
        return ofAnotherKind;
    return refused.empty() ? 0 : failed;
}

int list(const Installer& installer) {
    auto applications = installer.list();
    if (!applications)
        return report(applications.failure());
    for (const Installer::Application& application : *applications)
        std::printf("%s\t%s\t%s\t%s\n", onOneLine(application.identifier).c_str(),
                    onOneLine(application.name).c_str(), onOneLine(application.version).c_str(),
                    onOneLine(application.path).c_str());
    return 0;
}

int save(const Installer& installer, ProgressReport& progress, const Request& request) {
    const std::string& identifier = request.arguments[0];
    const std::string& file = request.arguments[1];
    // What would be left of the archive is taken away first.
    Interruption::note();
    progress.start(fileName(file));
    auto done = request.descriptor ? installer.exportTo(identifier, file, *request.descriptor)
                                   : installer.exportTo(identifier, file);
    progress.clear();
    if (!done) {
        report(done.failure());
        Interruption::follow();
        return failed;
    }
    say("Saved " + identifier + " (" + fileName(file) + ")");
    return 0;
}

int carryOut(const Request& request) {
    std::error_code error;
    if (!std::filesystem::is_directory(request.root, error))
        return report({request.root + " is not a folder"});
    ProgressReport progress(request.progress);
    Installer installer(
        request.root, {},
        [&progress](std::uint64_t done, std::uint64_t total) { progress.show(done, total); },
        [&progress] {
            progress.clear();
            report({"waiting for another installer to finish"});
        });
    if (request.command == "-f")
        return installAll(installer, progress, request);
    if (request.command == "-l")
        return list(installer);
    if (request.command == "-b")
        return save(installer, progress, request);
    const std::string& identifier = request.arguments[0];
    if (auto done = installer.uninstall(identifier); !done)
        return report(done.failure());
    say("Removed " + identifier);
    return 0;
}

} // namespace

int main(int count, char* words[]) {
    // A file that may not become so large is a failure like another.
    std::signal(SIGXFSZ, SIG_IGN);
    const std::optional<Request> request =
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
        return report({"cannot write to the standard output"});
    return status;
}
