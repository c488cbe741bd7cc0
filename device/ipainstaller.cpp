#include "device/Installer.h"

#include <algorithm>
#include <cstdio>
#include <optional>
#include <span>
#include <string_view>

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
    "  --help                    show this text\n";

struct Request {
    std::string root = "/";
    std::string command;
    std::vector<std::string> arguments;
};

/// What is asked for; nothing when the command line makes no sense.
std::optional<Request> parse(std::span<char* const> words) {
    Request request;
    for (std::size_t index = 0; index < words.size(); ++index) {
        const std::string word = words[index];
        const bool isCommand = word == "-f" || word == "-l" || word == "-u" || word == "-b";
        if (word == "--root" && index + 1 < words.size() && *words[index + 1] != '\0')
            request.root = words[++index];
        else if (word == "--help")
            return Request{"/", word, {}};
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

int report(const dubrix::Failure& failure) {
    std::fprintf(stderr, "ipainstaller: %s\n", onOneLine(failure.text).c_str());
    return failed;
}

void say(const std::string& line) {
    std::printf("%s\n", onOneLine(line).c_str());
}

int installAll(Installer& installer, const std::vector<std::string>& files) {
    int status = 0;
    for (const std::string& file : files) {
        if (auto installed = installer.install(file))
            say("Installed " + *installed->identifier + " (" + installed->displayName + ")");
        else
            status = report(installed.failure());
        std::fflush(stdout); // line by line, also into a pipe
    }
    return status;
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
    Installer installer(request.root);
    if (request.command == "-f")
        return installAll(installer, request.arguments);
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
    if (auto done = installer.exportTo(identifier, file); !done)
        return report(done.failure());
    say("Saved " + identifier + " (" + std::filesystem::path(file).filename().native() + ")");
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
