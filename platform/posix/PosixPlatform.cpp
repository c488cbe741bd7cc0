#include "platform/posix/PosixPlatform.h"

namespace dubrix {

namespace {

template<class Port>
Port& oneOf(Port* other, Port& own) {
    return other ? *other : own;
}

} // namespace

PosixPlatform::PosixPlatform(const std::filesystem::path& root,
                             const std::filesystem::path& pathsScript,
                             std::unique_ptr<CommandConfinement> confinement)
    : commands(root, pathsScript, std::move(confinement)),
      files(root),
      workspace(root),
      applications(root),
      device(root) {}

Platform PosixPlatform::ports(const Others& others) {
    return {.commands = oneOf<CommandRunner>(others.commands, commands),
            .files = oneOf<FileManager>(others.files, files),
            .workspace = oneOf<ApplicationWorkspace>(others.workspace, workspace),
            .applications = oneOf<ApplicationList>(others.applications, applications),
            .monochrome = oneOf<MonochromeFilter>(others.monochrome, monochrome),
            .byteCounts = byteCounts,
            .log = oneOf<SystemLog>(others.log, log),
            .downloader = oneOf<Downloader>(others.downloader, downloader),
            .device = device};
}

} // namespace dubrix
