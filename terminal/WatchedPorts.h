#pragma once

#include "platform/ApplicationWorkspace.h"
#include "platform/CommandRunner.h"
#include "terminal/Watch.h"

#include <functional>
#include <optional>
#include <string>

namespace dubrix {

/// The system's record of applications, and what the engine has last been told of it. The engine
/// asks for a duplicate right before it makes it and, once more, to judge the outcome.
class WatchedWorkspace final : public ApplicationWorkspace {
public:
    explicit WatchedWorkspace(const ApplicationWorkspace& workspace) : workspace_(workspace) {}

    bool applicationIsInstalled(const std::string& identifier) const override {
        const bool isInstalled = workspace_.applicationIsInstalled(identifier);
        if (identifier == lastAsked_)
            was_ = is_;
        lastAsked_ = identifier;
        is_ = isInstalled;
        return isInstalled;
    }

    const std::string& lastAsked() const { return lastAsked_; }
    /// The answer to the question before the last, when it was about the same application.
    bool wasInstalled() const { return was_; }

private:
    const ApplicationWorkspace& workspace_;
    mutable std::string lastAsked_;
    mutable bool was_ = false;
    mutable bool is_ = false;
};

/// Runs commands, says of each before it starts, and looks what it does.
class WatchedCommands final : public CommandRunner {
public:
    explicit WatchedCommands(CommandRunner& commands) : commands_(commands) {}

    std::function<void(const std::string& command)> begins = [](const std::string&) {};
    /// Called by another thread, while the command runs; none when it is empty.
    std::function<void()> meanwhile;

    void runCommand(const std::string& command) override {
        begins(command);
        const std::optional<Watch> watch =
            meanwhile ? std::optional<Watch>(std::in_place, meanwhile) : std::nullopt;
        commands_.runCommand(command);
    }

private:
    CommandRunner& commands_;
};

} // namespace dubrix
