#pragma once

#include <optional>
#include <string>

namespace dubrix {

/// What the program and the person say to each other, apart from what the command gives.
class Conversation {
public:
    virtual ~Conversation() = default;

    /// Shows a text as it stands; a line ends only where the text says so.
    virtual void say(const std::string& text) = 0;
    /// The next line that the person types, without its end; nothing when there is none any more,
    /// or nobody who could type.
    virtual std::optional<std::string> answer() = 0;
};

} // namespace dubrix
