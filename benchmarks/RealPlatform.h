#pragma once

#include "engine/Alerts.h"
#include "engine/CloneEngine.h"
#include "platform/posix/PosixPlatform.h"

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
    Size mainViewSize() const override { return {}; }

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

/// The engine as a loaded main screen has it, over the real platform of the device in `root`.
class RealEngine {
public:
    RealEngine(const std::filesystem::path& root, const std::filesystem::path& pathsScript)
        : posix(root, pathsScript),
          engine(platform, alerts) {}

    Silence log;
    PosixPlatform posix;
    const Platform platform = posix.ports({.log = &log});
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
