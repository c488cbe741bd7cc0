#pragma once

#include <optional>
#include <string>

namespace dubrix {

/// Reads lines from a file descriptor as far as they have come: nobody waits for a pipe.
class ScriptReader {
public:
    explicit ScriptReader(int descriptor) : descriptor_(descriptor) {}

    /// The next line; nothing when none has come whole. What follows the last line break, even if
    /// it is empty, is a line once the input has ended.
    std::optional<std::string> nextLine();
    /// Whether the input has ended and every line has been taken.
    bool atEnd() const { return atEnd_; }

private:
    /// False when nothing has come.
    bool read();

    int descriptor_;
    std::string pending_;
    bool hasEnded_ = false;
    bool atEnd_ = false;
};

} // namespace dubrix
