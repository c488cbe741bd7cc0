#pragma once

#include "device/confine/ProgressBar.h"
#include "device/confine/VisibleText.h"
#include "files/Descriptor.h"

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace dubrix {

/// How a command's output is passed on.
enum class Shown {
    /// With control characters spelt out, see VisibleText.
    Visible,
    /// Visible on a terminal, byte by byte elsewhere.
    VisibleOnTerminal,
    /// Visible; lines "progress PERCENT" become a bar on a terminal at the standard error, with the
    /// title that the last "progress PERCENT TITLE" gave it.
    Progress,
};

/// What passes a command's output on to the launcher's own.
class Output {
public:
    Output(int target, Shown shown);

    using Write = std::function<void(std::string_view)>;

    /// Bytes of the command for the target, made fit for it.
    void pass(std::string_view bytes, const Write& write);
    /// What is left at the command's end.
    void passRest(const Write& write);
    /// Takes the bar away, so that others can print.
    void makeWay();

private:
    bool drawProgress(std::string_view line);

    VisibleText visible_;
    bool raw_;
    std::string unfinished_;
    std::optional<ProgressBar> bar_;
};

/// The standard streams of a command: pipes whose other ends this process serves, so that no
/// descriptor of the desktop's is in the command's hands.
class Streams {
public:
    /// `input`: whether the command reads what this process is given; else it reads nothing.
    Streams(bool input, Shown shown);

    /// Puts the command's ends in the place of the standard streams; in the new process, before the
    /// command is executed. False when that is not possible.
    bool enter() const;

    /// From now on a signal that asks for the end closes the other end of what is given here, and
    /// is handed to the command only when one of its kind comes again. To be called before `serve`.
    Descriptor makeStop();

    /// Serves the streams until `command` has ended and what it wrote is passed on; its exit
    /// status, 128 and the signal's number where a signal ended it. Signals that ask for the end
    /// are handed to the command as SIGTERM; they and SIGCHLD must have been blocked before the
    /// command was started. What still runs in the background is not waited for longer than `grace`
    /// milliseconds of silence; with any grace, what is left in the command's group is killed.
    int serve(pid_t command, int grace);

private:
    struct Channel {
        Descriptor theirs;
        Descriptor ours;
        int target;
        Output output;
    };

    void passOn(Channel& channel);
    void passInput();
    bool ready(int descriptor, short events, int milliseconds);
    bool hasEnded() const;
    void takeSignals();
    void askForEnd(int signal);
    void write(Channel& channel, std::string_view bytes);
    Output::Write writer(Channel& channel);

    Channel out_;
    Channel err_;
    Descriptor inputTheirs_;
    Descriptor inputOurs_;
    std::string typed_;
    Descriptor signals_;
    Descriptor stop_;
    bool isStoppable_ = false;
    std::set<int> asked_;
    pid_t command_ = -1;
    bool endsWhole_ = false;
    std::optional<int> status_;
};

} // namespace dubrix
