#pragma once

#include "engine/Alerts.h"
#include "engine/CloneEngine.h"
#include "platform/SystemLog.h"
#include "platform/linux/FileStyleByteCount.h"
#include "platform/linux/LinuxApplicationList.h"
#include "platform/linux/LinuxApplicationWorkspace.h"
#include "platform/linux/LinuxCommandRunner.h"
#include "platform/linux/LinuxFileManager.h"
#include "platform/linux/LinuxMonochromeFilter.h"
#include "tests/support/NoDownloads.h"

namespace dubrix {

/// Answers every question with yes: "Duplicate", "Update".
class AgreeingAlerts final : public Alerts {
public:
    void showSimpleAlertWithTitle(const Text&, const Text& message, const std::string&) override {
        said = message.value_or("");
    }
    void show2ButtonAlertWithTitle(const Text&, const Text& message, const std::string&,
                                   const std::string&, AlertBlock, AlertBlock okBlock) override {
        said = message.value_or("");
        okBlock();
    }
    void show3ButtonAlertWithTitle(const Text&, const Text& message, const std::string&,
                                   const std::string&, const std::string&, AlertBlock firstBlock,
                                   AlertBlock) override {
        said = message.value_or("");
        firstBlock();
    }
    void presentProgressAlert(const ProgressAlert&) override {}
    void dismissProgressAlert() override {}
    ViewSize mainViewSize() const override { return {}; }

    /// The last message.
    std::string said;
};

class SilentLog final : public SystemLog {
public:
    void log(const std::string&) override {}
};

/// The engine as a loaded main screen has it, over the real platform of the device in `root`.
class RealEngine {
public:
    RealEngine(const std::filesystem::path& root, const std::filesystem::path& pathsScript)
        : commands(root, pathsScript),
          files(root),
          workspace(root),
          applications(root),
          engine(platform, alerts) {}

    LinuxCommandRunner commands;
    LinuxFileManager files;
    LinuxApplicationWorkspace workspace;
    LinuxApplicationList applications;
    LinuxMonochromeFilter filter;
    FileStyleByteCount byteCounts;
    SilentLog log;
    NoDownloads downloader;
    const Platform platform{commands, files,      workspace, applications,
                            filter,   byteCounts, log,       downloader};
    AgreeingAlerts alerts;

    class LoadedEngine final : public CloneEngine {
    public:
        LoadedEngine(const Platform& given, Alerts& alerts) : CloneEngine(given, alerts) {
            al = &given.applications;
        }
    };
    LoadedEngine engine;
};

} // namespace dubrix
