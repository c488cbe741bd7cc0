#pragma once

#include "engine/Alerts.h"
#include "engine/CloneEngine.h"
#include "platform/SystemLog.h"
#include "platform/linux/FileStyleByteCount.h"
#include "platform/linux/LinuxApplicationList.h"
#include "platform/linux/LinuxApplicationWorkspace.h"
#include "platform/linux/LinuxCommandRunner.h"
#include "platform/linux/LinuxDeviceClaim.h"
#include "platform/linux/LinuxFileManager.h"
#include "platform/linux/LinuxMonochromeFilter.h"
#include "tests/support/NoDownloads.h"

namespace dubrix {

/// Answers every question with yes ("Duplicate", "Update"), when it is asked to.
class AgreeingAlerts final : public Alerts {
public:
    void showSimpleAlertWithTitle(const Text&, const Text& message, const std::string&) override {
        said = message.value_or("");
    }
    void show2ButtonAlertWithTitle(const Text&, const Text& message, const std::string&,
                                   const std::string&, AlertBlock, AlertBlock okBlock) override {
        said = message.value_or("");
        answer_ = std::move(okBlock);
    }
    void show3ButtonAlertWithTitle(const Text&, const Text& message, const std::string&,
                                   const std::string&, const std::string&, AlertBlock firstBlock,
                                   AlertBlock) override {
        said = message.value_or("");
        answer_ = std::move(firstBlock);
    }
    void presentProgressAlert(const ProgressAlert&) override {}
    void dismissProgressAlert() override {}
    ViewSize mainViewSize() const override { return {}; }

    /// Answers until there are no more questions.
    void answerAll() {
        while (answer_)
            std::exchange(answer_, {})();
    }

    /// The last message.
    std::string said;

private:
    AlertBlock answer_;
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
          device(root),
          engine(platform, alerts) {}

    LinuxCommandRunner commands;
    LinuxFileManager files;
    LinuxApplicationWorkspace workspace;
    LinuxApplicationList applications;
    LinuxDeviceClaim device;
    LinuxMonochromeFilter filter;
    FileStyleByteCount byteCounts;
    SilentLog log;
    NoDownloads downloader;
    const Platform platform{commands,   files, workspace,  applications, filter,
                            byteCounts, log,   downloader, device};
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
