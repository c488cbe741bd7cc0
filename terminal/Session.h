#pragma once

#include "engine/CloneEngine.h"
#include "platform/posix/PosixPlatform.h"
#include "terminal/Console.h"
#include "terminal/RunSettings.h"
#include "terminal/TerminalAlerts.h"
#include "terminal/TerminalStage.h"

namespace dubrix {

/// One duplicate that the engine has tried to make.
struct Attempt {
    std::string identifier;
    /// It was installed before: it has been rebuilt.
    bool wasInstalled = false;
    bool succeeded = false;
};

/// The engine with everything around it, on one device.
class Session {
public:
    Session(const std::filesystem::path& root, const std::filesystem::path& pathsScript,
            Console& console);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Has the engine do something, answers what it asks and gives what came of it. What the work
    /// has staged does not outlive an interruption.
    std::vector<Attempt> run(const std::function<void(CloneEngine&)>& work);
    /// Whether the program has been told to end.
    bool isStopped() const { return posix.commands.isStopped(); }

    Console& console;
    PosixPlatform posix;
    WatchedWorkspace workspace{posix.workspace};
    RunSettings settings{posix.files, workspace};
    TerminalAlerts alerts{console};

private:
    class Engine final : public CloneEngine {
    public:
        Engine(const Platform& given, Alerts& alerts) : CloneEngine(given, alerts) {
            al = &given.applications;
        }
    };
    void beginPart(const std::string& command);
    void showPart();

    WatchedCommands commands_{posix.commands};
    Silence silence_;
    TerminalStage stage_;
    const Platform platform_;
    std::vector<Attempt> attempts_;
    std::string work_;
    /// Of the source, in bytes, once it has been asked for.
    std::optional<std::int64_t> size_;
    /// Which of the three parts of a duplicate is being done, and its bytes that have been written.
    unsigned part_ = 0;
    std::int64_t written_ = 0;

public:
    Engine engine;
};

} // namespace dubrix
