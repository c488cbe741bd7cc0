#pragma once

#include "engine/DXShared.h"
#include "tests/device/DeviceFolder.h"
#include "tests/platform/SamplePng.h"
#include "tests/proof/ProcessGroup.h"

#include <sys/prctl.h>

namespace dubrix {

struct Ended {
    /// As a shell would give it: 128 and the signal's number for a process that was killed.
    int status;
    /// The last line, without its end.
    std::string output;
    bool killed() const { return status == 128 + SIGKILL; }
};

/// A device with one application chosen to be duplicated in colour, and the programs that work on
/// it: real processes in a group of their own, of which none is left when `run` returns.
class ProofDevice : public DeviceFolder {
public:
    using Contents = std::map<std::string, std::string>;

    ProofDevice() {
        ::prctl(PR_SET_CHILD_SUBREAPER, 1);
        std::filesystem::create_directories(root() / "tmp");
        std::filesystem::create_directories(tools());
        installSource("1");
        writeSettings();
    }

    void installSource(const std::string& version) const {
        const auto result = installer().install(sourceArchive(version));
        ASSERT_TRUE(result) << result.failure().text;
    }
    std::filesystem::path sourceArchive(const std::string& version) const;

    /// What an installed application's bundle holds, by paths in it; empty when not installed.
    Contents bundle(const std::string& identifier) const {
        return contentsBelow(installed(identifier));
    }
    Contents staged() const { return contentsBelow(root() / "tmp/Fine App/Payload/X.app"); }

    static Contents contentsBelow(const std::filesystem::path& bundle) {
        Contents contents;
        std::error_code error;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(bundle, error)) {
            std::string& content = contents[entry.path().lexically_relative(bundle).native()];
            if (entry.is_symlink())
                content = "-> " + std::filesystem::read_symlink(entry.path()).native();
            else if (entry.is_regular_file())
                content = contentsOf(entry.path());
        }
        return contents;
    }

    std::filesystem::path settingsPath() const { return root() / (settingsFilePath + 1); }
    /// A folder in which commands are looked for first.
    std::filesystem::path tools() const { return folder() / "tools"; }
    void putTool(const std::string& name, const std::string& script) const {
        putFile(tools() / name, "#!/bin/sh\n" + script);
        std::filesystem::permissions(tools() / name, std::filesystem::perms(0755));
    }

    Ended request(const std::vector<std::string>& before = {}) const {
        std::vector<std::string> words = before;
        words.insert(words.end(), {DUPLICATE_ONCE, root().native(), "request"});
        return run(words);
    }

    Ended run(const std::vector<std::string>& words, const std::string& path = "") const {
        return runTogether({words}, path).front();
    }

    /// Several programs at once.
    std::vector<Ended> runTogether(const std::vector<std::vector<std::string>>& programs,
                                   const std::string& path = "") const {
        std::vector<std::unique_ptr<ProcessGroup>> running;
        for (const std::vector<std::string>& words : programs)
            running.push_back(std::make_unique<ProcessGroup>(
                words, path.empty() ? searchPath() : path, outputOf(running.size())));
        std::vector<Ended> ends;
        for (const auto& program : running) {
            const int status = program->wait();
            ends.push_back({status, lastLineOf(outputOf(ends.size()))});
        }
        return ends;
    }

    /// Where programs look for commands.
    std::string searchPath() const { return tools().native() + ":" PROGRAMS ":/usr/bin:/bin"; }

    /// What commands say stands before it, in lines of their own.
    static std::string lastLineOf(const std::filesystem::path& output) {
        const std::string said = contentsOf(output);
        return said.substr(said.rfind('\n') + 1);
    }

    const std::string source = "com.example.app";
    const std::string duplicate = "com.example.app1";
    const std::string success = "Fine App successfully duplicated.";
    const std::string failure = "Failed to duplicate Fine App.";

private:
    void writeSettings() const;
    std::filesystem::path outputOf(std::size_t program) const {
        return folder() / ("output" + std::to_string(program));
    }
};

} // namespace dubrix
