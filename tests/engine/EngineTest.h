#pragma once

#include "engine/CloneEngine.h"
#include "engine/DXShared.h"
#include "overlays/ProgressHUD.h"
#include "platform/posix/PosixPlatform.h"
#include "tests/device/DeviceFolder.h"
#include "tests/overlays/FakeStage.h"
#include "tests/support/RecordedPlatform.h"

namespace dubrix {

/// The engine as a loaded screen has it: with the application list.
class LoadedEngine : public CloneEngine {
public:
    LoadedEngine(const Platform& given, Alerts& alerts) : CloneEngine(given, alerts) {
        al = &given.applications;
    }
    void unload() { al = nullptr; }
    void workingChanged(bool works) override { changes.push_back(works); }

    std::vector<bool> changes; ///< of whether it works
};

/// An engine over a scripted catalogue and the real files of a temporary device.
class EngineTest : public testing::Test {
protected:
    EngineTest() { ProgressHUD::useStage(stage); }
    ~EngineTest() override { ProgressHUD::withdrawStage(); }

    std::filesystem::path settingsPath() const { return onDevice(settingsFilePath); }
    std::filesystem::path onDevice(const std::string& path) const {
        return device.root() / path.substr(1);
    }

    /// Writes the settings file, in the old-style text form. The name of then never counts.
    void choose(const std::string& settings) const { putFile(settingsPath(), settings); }
    void chooseSource(const std::string& identifier, const std::string& more = "") const {
        choose("{bundleID = \"" + identifier + "\"; appName = Stored;" + more + "}");
    }

    DeviceFolder device;
    Journal journal;
    ScriptedCatalogue catalogue;
    RecordedCommands commands{journal};
    RecordedFilter filter;
    RecordedLog log{journal};
    RecordedAlerts alerts{journal};
    FakeStage stage;
    PosixPlatform posix{device.root()};
    PosixFileManager& files = posix.files;
    const Platform platform = posix.ports({.commands = &commands,
                                           .workspace = &catalogue,
                                           .applications = &catalogue,
                                           .monochrome = &filter,
                                           .log = &log});
    LoadedEngine engine{platform, alerts};
};

} // namespace dubrix
