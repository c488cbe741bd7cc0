#pragma once

#include "engine/Alerts.h"
#include "platform/ApplicationList.h"
#include "platform/ApplicationWorkspace.h"
#include "platform/CommandRunner.h"
#include "platform/MonochromeFilter.h"
#include "platform/SystemLog.h"

#include <algorithm>
#include <functional>
#include <utility>

namespace dubrix {

/// What the ports were told, in the order across all of them: "log …", "run …", "present …",
/// "alert".
using Journal = std::vector<std::string>;

/// The rest of each entry that begins with `kind` and a blank.
inline std::vector<std::string> entriesOf(const Journal& journal, const std::string& kind) {
    std::vector<std::string> entries;
    for (const std::string& entry : journal)
        if (entry.starts_with(kind + " "))
            entries.push_back(entry.substr(kind.size() + 1));
    return entries;
}

struct RecordedLog final : SystemLog {
    RecordedLog() = default;
    /// Also in a journal of others.
    explicit RecordedLog(Journal& shared)
        : heard([&shared](const std::string& text) { shared.push_back("log " + text); }) {}
    void log(const std::string& text) override {
        lines.push_back(text);
        heard(text);
    }

    std::vector<std::string> lines;
    std::function<void(const std::string&)> heard = [](const std::string&) {};
};

/// Applications as the test says they are; the two services share them, so that only
/// `isRegistered` tells them apart.
struct ScriptedCatalogue final : ApplicationWorkspace, ApplicationList {
    struct Application {
        Text name = std::nullopt, path = std::nullopt, version = std::nullopt;
        bool isRegistered = true;
    };

    bool applicationIsInstalled(const std::string& identifier) const override {
        const auto found = known.find(identifier);
        return found != known.end() && found->second.isRegistered;
    }
    Text valueForKey(std::string_view key, const std::string& identifier) const override {
        const auto found = known.find(identifier);
        if (found == known.end())
            return std::nullopt;
        const auto& [name, path, version, isRegistered] = found->second;
        return key == "displayName" ? name : key == "path" ? path : version;
    }
    std::map<std::string, std::string> applications() const override { return {}; }
    std::vector<Entry> entries() const override { return {}; }

    std::map<std::string, Application> known;
};

/// Notes commands; what each then does is up to `act`, which does nothing at first.
struct RecordedCommands final : CommandRunner {
    explicit RecordedCommands(Journal& shared) : journal(shared) {}
    void runCommand(const std::string& command) override {
        journal.push_back("run " + command);
        act(command);
    }

    Journal& journal;
    std::function<void(const std::string&)> act = [](const std::string&) {};
};

/// Notes images and colours; refuses what does not begin with "image", puts a "+" after the rest.
struct RecordedFilter final : MonochromeFilter {
    std::optional<std::string> monochromePng(std::string_view image, float red, float green,
                                             float blue) const override {
        images.emplace_back(image);
        colors.push_back({red, green, blue});
        if (afterwards)
            afterwards();
        return image.starts_with("image") ? std::optional(std::string(image) + "+") : std::nullopt;
    }

    mutable std::vector<std::string> images;
    mutable std::vector<std::vector<float>> colors;
    std::function<void()> afterwards;
};

/// Alerts as they were asked for; the last is open until a button is pressed.
struct RecordedAlerts final : Alerts {
    explicit RecordedAlerts(Journal& shared) : journal(shared) {}

    void showSimpleAlertWithTitle(const Text& title, const Text& message,
                                  const std::string& okText) override {
        open(title, message, {{okText, [] {}}});
    }
    void show2ButtonAlertWithTitle(const Text& title, const Text& message,
                                   const std::string& okButton, const std::string& cancelButton,
                                   AlertBlock cancelBlock, AlertBlock okBlock) override {
        open(title, message, {{cancelButton, cancelBlock}, {okButton, okBlock}});
    }
    void show3ButtonAlertWithTitle(const Text& title, const Text& message,
                                   const std::string& firstButton, const std::string& secondButton,
                                   const std::string& cancelButton, AlertBlock firstBlock,
                                   AlertBlock secondBlock) override {
        open(title, message,
             {{firstButton, firstBlock}, {secondButton, secondBlock}, {cancelButton, secondBlock}});
    }
    void presentProgressAlert(const ProgressAlert& alert) override {
        journal.push_back("present " + alert.title + "|" + alert.message);
        progress.push_back(alert);
        presenting();
    }
    void dismissProgressAlert() override { journal.emplace_back("dismiss"); }
    Size mainViewSize() const override { return view; }

    /// Presses a button of the open alert. False when it has no such button.
    bool press(const std::string& title) {
        const auto pressed = std::exchange(buttons_, {});
        const auto button = std::ranges::find(pressed, title, &Button::first);
        if (std::exchange(shown, {}).empty() || button == pressed.end())
            return false;
        button->second();
        return true;
    }

    Journal& journal;
    std::string shown; ///< the open alert: "title|message|button|button…"; empty when none is open
    std::vector<ProgressAlert> progress;
    std::function<void()> presenting = [] {};
    Size view{320, 480};

private:
    using Button = std::pair<std::string, AlertBlock>;

    void open(const Text& title, const Text& message, const std::vector<Button>& buttons) {
        journal.emplace_back("alert");
        shown = title.value_or("(absent)") + "|" + message.value();
        for (const auto& [text, block] : buttons)
            shown += "|" + text;
        buttons_ = buttons;
    }

    std::vector<Button> buttons_;
};

} // namespace dubrix
