#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace dubrix {

/// One step of a driver script:
///
///     tap NAME                press what has this accessible name
///     hold NAME               press it long, then let go
///     drop FILE               let go of this file of the desktop over the window's middle
///     type NAME TEXT          replace the text of the field with this accessible name
///     wait TEXT [SECONDS]     until TEXT is visible; 10 seconds unless given
///     gone TEXT [SECONDS]     until TEXT is not visible; 10 seconds unless given
///     expect TEXT             TEXT is visible now
///     absent TEXT             TEXT is not visible now
///     shot FILE.png           save what the window shows
///
/// NAME and TEXT may be quoted, with \n, \" and \\ inside the quotes. Unquoted, the NAME of `type`
/// is one word, and every other argument reaches to the end of the line (a last word that is a
/// number gives the SECONDS of `wait` and `gone`). Blank lines and lines that begin with # are no
/// steps.
struct ScriptStep {
    enum class Verb { Tap, Type, Wait, Gone, Expect, Absent, Shot, Hold, Drop };

    /// Whether it may be given SECONDS.
    bool waits() const { return verb == Verb::Wait || verb == Verb::Gone; }

    Verb verb = Verb::Tap;
    std::string target{}; ///< NAME, TEXT, FILE or FILE.png
    std::string text{};   ///< what `type` types
    double seconds = 10;
};

/// What a line of a script says: a step, nothing (neither is set), or what is wrong with it.
struct ScriptLine {
    std::optional<ScriptStep> step{};
    std::string error{};
};

ScriptLine parseScriptLine(std::string_view line);

} // namespace dubrix
