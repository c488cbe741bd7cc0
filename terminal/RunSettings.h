#pragma once

#include "platform/FileManager.h"
#include "terminal/Color.h"
#include "terminal/WatchedPorts.h"

namespace dubrix {

/// The device's files, with the values of this run laid over the settings that are read from them.
/// What is written goes to the files as it is, so that nothing of a run is stored.
class RunSettings final : public FileManager {
public:
    struct Values {
        /// The source; absent for the one that is stored.
        std::optional<std::string> identifier;
        /// The custom name, in which "{n}" stands for the duplicate's number.
        std::optional<std::string> name;
        std::optional<TintColor> color;
        /// Neither name nor colour, whatever is stored.
        bool isPlain = false;
    };

    RunSettings(FileManager& files, const WatchedWorkspace& workspace)
        : files_(files),
          workspace_(workspace) {}

    Values values;

    bool fileExistsAtPath(const std::string& path) const override {
        return files_.fileExistsAtPath(path);
    }
    bool createDirectoryAtPath(const std::string& path) override {
        return files_.createDirectoryAtPath(path);
    }
    bool removeItemAtPath(const std::string& path) override {
        return files_.removeItemAtPath(path);
    }
    std::vector<std::int64_t> sizesOfItemsBelowPath(const std::string& path) const override {
        return files_.sizesOfItemsBelowPath(path);
    }
    std::optional<std::string> contentsAtPath(const std::string& path) const override;
    bool writeToFile(const std::string& path, std::string_view bytes) override {
        return files_.writeToFile(path, bytes);
    }

private:
    /// `name` with the number of the duplicate that the engine has asked for last.
    std::string numbered(std::string name) const;

    FileManager& files_;
    const WatchedWorkspace& workspace_;
};

} // namespace dubrix
