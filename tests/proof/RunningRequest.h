#pragma once

#include "tests/proof/ProofDevice.h"

#include <chrono>
#include <functional>
#include <optional>
#include <random>
#include <sys/syscall.h>

namespace dubrix {

/// A request to the device: the words of its program, and what it may leave behind.
struct Request {
    /// "install", "duplicate"…: for the report, and for how long one of its kind takes.
    std::string kind;
    std::vector<std::string> words;
    /// What the request is about, as it stands on the device.
    std::function<ProofDevice::Contents()> state;
    /// What it may find or leave: one that was killed leaves either, any other the latter.
    ProofDevice::Contents before;
    ProofDevice::Contents after;
};

/// A request on its way, to be killed at a moment or never.
class RunningRequest {
public:
    using Clock = std::chrono::steady_clock;

    RunningRequest(const ProofDevice& device, Request asked, const std::string& name,
                   std::optional<Clock::time_point> moment)
        : request(std::move(asked)),
          output(device.folder() / ("output-" + name)),
          group(request.words, device.searchPath(), output),
          ending(static_cast<int>(::syscall(SYS_pidfd_open, group.leader(), 0))),
          fatalMoment(moment) {}
    ~RunningRequest() { ::close(ending); }
    RunningRequest(const RunningRequest&) = delete;
    RunningRequest& operator=(const RunningRequest&) = delete;

    /// Kills one of the processes: the application or the installer alone, since each makes sure of
    /// its own work; any other command with its application, which does not ask what became of it.
    /// Its name, or nothing where the last one has just ended.
    std::optional<std::string> killOne(std::mt19937& random) {
        // They stand still while one is chosen: that takes longer than much of their work.
        ::kill(-group.leader(), SIGSTOP);
        const auto members = group.members();
        if (members.empty())
            return std::nullopt;
        const auto& victim = members[random() % members.size()];
        const bool alone = victim.process == group.leader() || victim.program == "ipainstaller";
        ::kill(alone ? victim.process : -group.leader(), SIGKILL);
        ::kill(-group.leader(), SIGCONT);
        killed = true;
        return victim.program;
    }

    void end() {
        status = group.wait();
        took = Clock::now() - started;
        group.waitForAll();
    }

    Request request;
    std::filesystem::path output;
    Clock::time_point started = Clock::now();
    Clock::duration took{};
    ProcessGroup group;
    int ending;
    std::optional<Clock::time_point> fatalMoment;
    bool killed = false;
    std::optional<int> status;
};

} // namespace dubrix
