#include "device/Installer.h"
#include "device/ProgressBar.h"

#include <algorithm>
#include <cstdio>
#include <optional>
#include <span>
#include <string_view>
#include <unistd.h>
#include <utility>

namespace {

using dubrix::Installer;

constexpr int failed = 1;
constexpr int mistaken = 2;

constexpr const char* usage =
    "Usage: ipainstaller [--root DIR] COMMAND\n"
    "\n"
    "  -f FILE.ipa…              install applications, in place of earlier versions\n"
    "  -l                        list installed applications: identifier, name, version, path\n"
    "  -u IDENTIFIER             remove an application\n"
    "  -b IDENTIFIER FILE.ipa    save an application as an archive\n"
    "  --root DIR                work on the device in the folder DIR instead of \"/\"\n"
    "  --progress bar|lines      how far -f and -b are: a bar on a terminal at the standard "
    "error,\n"
    "                            or a line \"progress PERCENT\" at each step on the standard "
    "output;\n"
    "                            several archives are summed up in a last line\n"
    "  --                        what follows are files and identifiers, even \"-l\"\n"
    "  --help                    show this text\n";

struct Request {
    std::string root = "/";
    std::string command;
    std::vector<std::string> arguments;
    /// "bar", "lines", or empty for none.
    std::string progress;
};

/// What is asked for; nothing when the command line makes no sense.
std::optional<Request> parse(std::span<char* const> words) {
    Request request;
    bool isName = false;
    for (std::size_t index = 0; index < words.size(); ++index) {
        const std::string word = words[index];
        if (isName) {
            request.arguments.push_back(word);
            continue;
        }
        const bool isCommand = word == "-f" || word == "-l" || word == "-u" || word == "-b";
        if (word == "--root" && index + 1 < words.size() && *words[index + 1] != '\0')
            request.root = words[++index];
        else if (word == "--progress" && index + 1 < words.size() &&
                 (words[index + 1] == std::string_view("bar") ||
                  words[index + 1] == std::string_view("lines")))
            request.progress = words[++index];
        else if (word == "--" && !request.command.empty())
            isName = true;
        else if (word == "--help")
            return Request{"/", word, {}, {}};
        else if (isCommand && request.command.empty())
            request.command = word;
        else if (!request.command.empty() && !word.empty() && word[0] != '-')
            request.arguments.push_back(word);
        else
            return std::nullopt;
    }
    const std::size_t count = request.arguments.size();
    const bool fits =
        (request.command == "-f" && count >= 1) || (request.command == "-l" && count == 0) ||
        (request.command == "-u" && count == 1) || (request.command == "-b" && count == 2);
    return fits ? std::optional(request) : std::nullopt;
}

/// The text on one line and in one field of it: control characters become blanks.
std::string onOneLine(std::string text) {
    const auto isControl = [](unsigned char byte) { return byte < 0x20 || byte == 0x7f; };
    std::replace_if(text.begin(), text.end(), isControl, ' ');
    return text;
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
            report(installed.failure());
        }
        std::fflush(stdout); // line by line, also into a pipe
    }
    if (!request.progress.empty() && files.size() > 1)
        sumUp(files.size() - refused.size(), refused);
    return refused.empty() ? 0 : failed;
}

int list(const Installer& installer) {
    for (const Installer::Application& application : installer.list())
        std::printf("%s\t%s\t%s\t%s\n", onOneLine(application.identifier).c_str(),
                    onOneLine(application.name).c_str(), onOneLine(application.version).c_str(),
                    onOneLine(application.path).c_str());
    return 0;
}

int carryOut(const Request& request) {
    std::error_code error;
    if (!std::filesystem::is_directory(request.root, error))
        return report({request.root + " is not a folder"});
    ProgressReport progress(request.progress);
    Installer installer(request.root, {}, [&progress](std::uint64_t done, std::uint64_t total) {
        progress.show(done, total);
    });
    if (request.command == "-f")
        return installAll(installer, progress, request);
    if (request.command == "-l")
        return list(installer);
    const std::string& identifier = request.arguments[0];
    if (request.command == "-u") {
        if (auto done = installer.uninstall(identifier); !done)
            return report(done.failure());
        say("Removed " + identifier);
        return 0;
    }
    const std::string& file = request.arguments[1];
    progress.start(fileName(file));
    auto done = installer.exportTo(identifier, file);
    progress.clear();
    if (!done)
        return report(done.failure());
    say("Saved " + identifier + " (" + fileName(file) + ")");
    return 0;
}

} // namespace

int main(int count, char* words[]) {
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
