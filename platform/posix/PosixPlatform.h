#pragma once

#include "platform/Platform.h"
#include "platform/posix/FileStyleByteCount.h"
#include "platform/posix/NoDownloads.h"
#include "platform/posix/PosixApplications.h"
#include "platform/posix/PosixCommandRunner.h"
#include "platform/posix/PosixDeviceClaim.h"
#include "platform/posix/PosixFileManager.h"
#include "platform/posix/PosixMonochromeFilter.h"
#include "platform/posix/PosixSystemLog.h"

#include <memory>

namespace dubrix {

/// A POSIX system's answers to what the engine asks, for the device whose root folder is `root`.
/// What the commands need is told by PosixCommandRunner.
struct PosixPlatform {
    explicit PosixPlatform(const std::filesystem::path& root,
                           const std::filesystem::path& pathsScript = {},
                           std::unique_ptr<CommandConfinement> confinement = nullptr);

    /// Answers of the caller's own in place of these; null for no other one.
    struct Others {
        CommandRunner* commands = nullptr;
        FileManager* files = nullptr;
        ApplicationWorkspace* workspace = nullptr;
        ApplicationList* applications = nullptr;
        MonochromeFilter* monochrome = nullptr;
        SystemLog* log = nullptr;
        Downloader* downloader = nullptr;
    };
    /// Refers to this object and to the others.
    Platform ports(const Others& others);
    Platform ports() { return ports(Others()); }

    PosixCommandRunner commands;
    PosixFileManager files;
    PosixApplicationWorkspace workspace;
    PosixApplicationList applications;
    PosixMonochromeFilter monochrome;
    FileStyleByteCount byteCounts;
    PosixSystemLog log;
    NoDownloads downloader;
    PosixDeviceClaim device;
};

} // namespace dubrix
