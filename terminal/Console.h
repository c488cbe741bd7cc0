#pragma once

#include "files/Descriptor.h"
#include "terminal/Conversation.h"

namespace dubrix {

/// The program's own standard streams. The commands that it runs get others in their place: no
/// input, and an output that is seen only where the person wants it.
class Console final : public Conversation {
public:
    struct Ways {
        /// Whether somebody answers at the standard input.
        bool isAnswered = false;
        /// Whether the launcher draws a bar of lines "progress PERCENT TITLE".
        bool drawsProgress = false;
        /// What is made does not outlive the run.
        bool isPassing = false;
        bool isQuiet = false;
        bool isVerbose = false;
        /// Where there is one, nobody answers once it can be read or is closed at its other end.
        int stop = -1;
    };
    /// Takes the streams; commands that are started afterwards have the others.
    explicit Console(const Ways& ways);

    void say(const std::string& text) override;
    std::optional<std::string> answer() override;
    bool isAnswered() const { return ways_.isAnswered; }
    bool drawsProgress() const { return ways_.drawsProgress && !ways_.isQuiet; }
    bool isPassing() const { return ways_.isPassing; }

    /// What the command gives.
    void give(const std::string& text);
    /// A sentence on what has been done; on a line of its own, not for a quiet program.
    void tell(const std::string& sentence);
    /// A sentence on what has failed; `refuse` says whose it is, which the engine's own do not.
    void complain(const std::string& sentence);
    void refuse(const std::string& sentence) { complain("dubrix: " + sentence); }
    /// What is being done, and how much of it; a new title, or another percentage of the last one.
    void showWork(const std::string& title, unsigned percent);

private:
    Ways ways_;
    Descriptor input_;
    Descriptor output_;
    Descriptor errors_;
    std::string typed_;
    std::string title_;
};

} // namespace dubrix
