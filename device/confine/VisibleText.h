#pragma once

#include <string>
#include <string_view>

namespace dubrix {

/// Makes a stream of bytes fit to be shown on a terminal: what would command it is spelt out.
///
/// Line breaks, tabs and printable UTF-8 pass as they are. Control characters of both sets become
/// "\x1b" and "\u009b", characters that change the direction of text or end a line "\u202e", and
/// bytes that are not UTF-8 "\xff". A letter may arrive in pieces.
class VisibleText {
public:
    /// The next bytes, as far as they can be decided; the rest waits for more.
    std::string take(std::string_view bytes);
    /// What still waits, when nothing more will come.
    std::string end();

private:
    std::string waiting_;
};

} // namespace dubrix
