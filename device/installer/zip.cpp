#include "device/archive/StoredArchive.h"
#include "files/Descriptor.h"
#include "files/FileTree.h"
#include "files/ReplacementFile.h"
#include "formats/text/PlainText.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

// The device's zip. A new archive of stored entries (zip -r NEW.ipa NAME…, with -0y from the
// environment or beside it) is made here, by several threads; whatever else is asked for, and what
// cannot be done here, the desktop's zip does.

namespace {

namespace fs = std::filesystem;
using namespace dubrix;

constexpr int notInstalled = 127;

struct Request {
    bool recurses = false;
    bool stores = false;
    bool keepsLinks = false;
    bool isQuiet = false;
    std::vector<std::string> words;
};

/// Takes options of one letter each; false for one that is not known here.
bool takeOptions(Request& request, std::string_view letters) {
    for (const char letter : letters) {
        if (letter == 'r')
            request.recurses = true;
        else if (letter == '0')
            request.stores = true;
        else if (letter == 'y')
            request.keepsLinks = true;
        else if (letter == 'q')
            request.isQuiet = true;
        else
            return false;
    }
    return !letters.empty();
}

bool takeWord(Request& request, std::string_view word) {
    if (word.starts_with('-'))
        return takeOptions(request, word.substr(1));
    request.words.emplace_back(word);
    return true;
}

/// What the environment adds to every command line.
std::string optionsOfEnvironment() {
    for (const char* name : {"ZIPOPT", "ZIP"})
        if (const char* value = std::getenv(name);
            value && std::string_view(value).find_first_not_of(" \t") != std::string_view::npos)
            return value;
    return {};
}

bool takeEnvironment(Request& request) {
    std::string options = optionsOfEnvironment();
    std::string_view rest = options;
    while (!rest.empty()) {
        const std::string_view word = rest.substr(0, rest.find_first_of(" \t"));
        if (!word.empty() && (!word.starts_with('-') || !takeOptions(request, word.substr(1))))
            return false;
        rest.remove_prefix(std::min(rest.size(), word.size() + 1));
    }
    return true;
}

/// Names that stand in the archive as they are, none of them twice.
bool arePlain(std::span<const std::string> names) {
    const std::set<std::string> different(names.begin(), names.end());
    return !names.empty() && different.size() == names.size() &&
           std::ranges::all_of(names, [](const std::string& name) {
               return isPlainPath(name) && name.find('/') == std::string::npos &&
                      !name.starts_with('@');
           });
}

/// What is to be packed here; nothing when the desktop's zip is to do it. Its first word is the
/// archive's name.
std::optional<Request> requestOf(std::span<char* const> arguments) {
    Request request;
    bool isKnown = takeEnvironment(request);
    for (const char* argument : arguments)
        isKnown = isKnown && takeWord(request, argument);
    if (!isKnown || !request.recurses || !request.stores || !request.keepsLinks ||
        request.words.size() < 2 || !request.words.front().ends_with(".ipa") ||
        !arePlain(std::span(request.words).subspan(1)))
        return std::nullopt;
    struct stat status{};
    if (::lstat(request.words.front().c_str(), &status) == 0)
        return std::nullopt;
    return request;
}

bool pack(const Request& request) {
    const Descriptor folder = openFolderAt(AT_FDCWD, ".");
    std::optional<ReplacementFile> archive = ReplacementFile::make(request.words.front(), 0666);
    std::string added;
    const auto tell = [&](const std::string& name) {
        if (!request.isQuiet)
            added += "  adding: " + onOneLine(name) + " (stored 0%)\n";
    };
    if (!folder.isOpen() || !archive ||
        !packStored(folder.get(), {request.words.begin() + 1, request.words.end()},
                    archive->descriptor(), tell) ||
        !archive->putInPlace(Durability::Process))
        return false;
    std::fputs(added.c_str(), stdout);
    return true;
}

/// Killed just after it has looked whether it may make an archive, the desktop's zip leaves an
/// empty file that every later one would refuse as damaged.
void removeEmptyArchives(std::span<char* const> arguments) {
    for (const std::string_view argument : arguments) {
        struct stat status{};
        if (argument.ends_with(".ipa") && ::lstat(argument.data(), &status) == 0 &&
            S_ISREG(status.st_mode) && status.st_size == 0)
            ::unlink(argument.data());
    }
}

/// Becomes the next zip of the search path after this one's folder: of two such programs there, or
/// of a script that starts this one, none calls another for ever.
void becomeDesktops(char** words) {
    namespace fs = std::filesystem;
    std::error_code error;
    const fs::path own = fs::read_symlink("/proc/self/exe", error);
    const char* const path = std::getenv("PATH");
    std::string_view rest = path ? path : "/usr/bin:/bin";
    std::vector<std::string> next;
    while (!rest.empty()) {
        const std::string_view folder = rest.substr(0, rest.find(':'));
        rest.remove_prefix(std::min(rest.size(), folder.size() + 1));
        const fs::path program = fs::path(folder.empty() ? "." : folder) / "zip";
        if (fs::equivalent(program, own, error) ||
            fs::equivalent(program.parent_path(), own.parent_path(), error))
            next.clear();
        else
            next.push_back(program);
    }
    for (const std::string& program : next)
        ::execv(program.c_str(), words);
}

} // namespace

int main(int count, char* words[]) {
    const auto arguments =
        std::span<char* const>(words, static_cast<std::size_t>(count)).subspan(count > 0 ? 1 : 0);
    removeEmptyArchives(arguments);
    if (const std::optional<Request> request = requestOf(arguments); request && pack(*request))
        return std::fflush(stdout) == 0 ? 0 : EXIT_FAILURE;
    becomeDesktops(words);
    std::fputs("zip: not installed\n", stderr);
    return notInstalled;
}
