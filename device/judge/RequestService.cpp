#include "device/judge/Ending.h"
#include "device/judge/Requests.h"
#include "device/judge/Services.h"
#include "device/judge/Streams.h"

#include <array>
#include <csignal>
#include <filesystem>
#include <sys/stat.h>

namespace dubrix {

namespace {

void handOn(const DeskRequest& request, Outflow& requests) {
    constexpr std::string_view end("\0", 1);
    requests.add(request.verb.empty() ? "refused" : request.verb);
    requests.add(end);
    requests.add(request.argument);
    requests.add(end);
}

/// Another launcher may have made new ones meanwhile: those are not the one that is read here.
void removePipes(const std::filesystem::path& folder) {
    struct stat own{};
    struct stat there{};
    const std::filesystem::path requests = folder / "requests";
    if (::fstat(STDIN_FILENO, &own) != 0 || ::lstat(requests.c_str(), &there) != 0 ||
        own.st_ino != there.st_ino || own.st_dev != there.st_dev)
        return;
    ::unlink(requests.c_str());
    ::unlink((folder / "answers").c_str());
}

} // namespace

int judgeRequests(pid_t launcher, const std::string& folder, std::vector<std::string> verbs) {
    const pid_t group = ::getpgid(launcher);
    const bool hasOwnGroup = group >= 0 && group != ::getpgrp();
    Ending ending(launcher);
    RequestReader reader(std::move(verbs));
    Outflow judged(STDOUT_FILENO);
    while (true) {
        // What a window asks for while it is served waits in its pipe.
        std::array ready = {
            pollfd{.fd = judged.isEmpty() ? STDIN_FILENO : -1, .events = POLLIN, .revents = 0},
            pollfd{.fd = judged.descriptor(), .events = POLLOUT, .revents = 0}};
        if (!ending.wait(ready))
            break;
        if (ready[0].revents != 0) {
            const std::string bytes = readPiece(STDIN_FILENO);
            if (bytes.empty())
                return 0;
            for (const DeskRequest& request : reader.read(bytes))
                handOn(request, judged);
        }
        if (ready[1].revents != 0)
            judged.flow();
        if (!judged.isOpen())
            return 1;
    }
    removePipes(folder);
    if (ending.launcherIsGone() && hasOwnGroup)
        ::kill(0, SIGTERM);
    return 0;
}

} // namespace dubrix
