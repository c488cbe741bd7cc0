#pragma once

#include "engine/DXShared.h"
#include "tests/device/DeviceFolder.h"
#include "tests/proof/ProcessGroup.h"

namespace dubrix {

struct Ended {
    /// As a shell would give it: 128 and the signal's number for a process that was killed.
    int status = -1;
    /// The last line of what people are told.
    std::string said{};
};

/// A device with one application chosen to be duplicated in colour, and the programs that work on
/// it: real processes in groups of their own, of which none is left when `run` returns.
class ProofDevice : public DeviceFolder {
public:
    using DeviceFolder::application;
    ProofDevice();

    void installSource(const std::string& version) const {
        const auto result = installer().install(sourceArchive(version));
        ASSERT_TRUE(result) << result.failure().text;
    }
    std::filesystem::path sourceArchive(const std::string& version) const;

    /// What an installed application's bundle holds, by paths in it; empty when not installed.
    Contents bundle(const std::string& identifier) const {
        return contentsBelow(installed(identifier));
    }
    std::filesystem::path settingsPath() const { return root() / (settingsFilePath + 1); }
    std::filesystem::path staging() const { return root() / "tmp"; }

    /// A folder in which commands are looked for first.
    std::filesystem::path tools() const { return folder() / "tools"; }
    void putTool(const std::string& name, const std::string& script) const {
        putFile(tools() / name, "#!/bin/sh\n" + script);
        std::filesystem::permissions(tools() / name, std::filesystem::perms(0755));
    }
    /// Where programs look for commands.
    std::string searchPath() const { return tools().native() + ":" PROGRAMS ":/usr/bin:/bin"; }

    /// The application without a window, which is asked for a duplicate, or to store a text among
    /// the settings.
    std::vector<std::string> application(std::vector<std::string> words) const {
        words.insert(words.begin(), {PROGRAMS "/dubrix-terminal", "--root", root()});
        return words;
    }
    std::vector<std::string> duplicating() const { return application({"duplicate", "-y"}); }
    std::vector<std::string> storing(const std::string& text) const {
        return application({"settings", "name", text});
    }
    /// What the one who asks for a duplicate is told.
    std::string request() const { return run(duplicating()).said; }

    Ended run(const std::vector<std::string>& words) const { return runTogether({words}).front(); }
    /// Several programs at once.
    std::vector<Ended> runTogether(const std::vector<std::vector<std::string>>& programs) const;

    const std::string source = "com.example.app";
    const std::string duplicate = "com.example.app1";
    const std::string success = "Fine App successfully duplicated.";
    const std::string failure = "Failed to duplicate Fine App.";
};

} // namespace dubrix
