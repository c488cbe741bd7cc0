#pragma once

#include "terminal/Color.h"

#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

namespace dubrix {

/// What the command line asks for.
struct Request {
    enum class Command { Duplicate, Update, Status, Settings, List };
    /// What is done about a stale duplicate that the walk meets.
    enum class Offers { Ask, Accept, Decline };

    Command command = Command::Status;
    /// Identifiers or names of installed applications.
    std::vector<std::string> sources;
    /// Archives of the desktop. The program itself never sees one; it tells the launcher.
    std::vector<std::string> archives;
    std::string output;

    std::optional<std::string> name;
    std::optional<TintColor> color;
    bool isPlain = false;
    int count = 1;
    std::optional<Offers> offers;

    bool saysYes = false;
    bool ofAll = false;
    bool asJson = false;
    bool isQuiet = false;
    bool isVerbose = false;

    /// Of "settings": the key, and the value to store.
    std::string key;
    std::optional<std::string> value;
};

/// The request in the words after the program's own options, or a sentence on what is wrong.
std::variant<Request, std::string> parseRequest(std::span<const std::string> words);

/// The request for the launcher: pairs of words, each word followed by a zero byte. "archive FILE",
/// "output PATH", "single yes" where at most one duplicate can come of it, "json yes", "yes yes",
/// "quiet yes", and as "word WORD" and "argument WORD" the command line for the program on the
/// device.
std::string planOf(const Request& request);

} // namespace dubrix
