#pragma once

#include <string>
#include <string_view>

namespace dubrix {

/// The picture that a script leaves which fails, in the folder where it was started.
inline constexpr std::string_view failureShot = "dubrix-failed.png";

/// Hands pictures to the desktop side, which alone can write files there. On `out` go the file's
/// name, a line break, the number of bytes, a line break and the bytes; on `in` one line comes
/// back: "ok" or what went wrong.
class ShotPipe {
public:
    ShotPipe(int out, int in) : out_(out), in_(in) {}

    /// Saves one picture; an empty text, or what went wrong.
    std::string save(std::string_view name, std::string_view bytes) const;

private:
    int out_;
    int in_;
};

} // namespace dubrix
