#pragma once

#include "platform/CommandRunner.h"
#include "platform/FileManager.h"
#include "platform/MonochromeFilter.h"
#include "platform/Platform.h"

namespace dubrix {

/// A command runner for a program with a window, which goes on painting while a command runs.
class PaintingCommandRunner final : public CommandRunner {
public:
    explicit PaintingCommandRunner(CommandRunner& runner) : runner_(runner) {}

    void runCommand(const std::string& command) override;

private:
    CommandRunner& runner_;
};

/// Files for a program with a window, which goes on painting while a folder, which may be large, is
/// measured or removed.
class PaintingFileManager final : public FileManager {
public:
    explicit PaintingFileManager(FileManager& files) : files_(files) {}

    bool fileExistsAtPath(const std::string& path) const override;
    bool createDirectoryAtPath(const std::string& path) override;
    bool removeItemAtPath(const std::string& path) override;
    std::vector<std::int64_t> sizesOfItemsBelowPath(const std::string& path) const override;
    std::optional<std::string> contentsAtPath(const std::string& path) const override;
    bool writeToFile(const std::string& path, std::string_view bytes) override;

private:
    FileManager& files_;
};

/// A filter for a program with a window, which goes on painting while an image is remapped.
class PaintingMonochromeFilter final : public MonochromeFilter {
public:
    explicit PaintingMonochromeFilter(const MonochromeFilter& filter) : filter_(filter) {}

    std::optional<std::string> monochromePng(std::string_view image, float red, float green,
                                             float blue) const override;

private:
    const MonochromeFilter& filter_;
};

/// Any platform for a program with a window: what may take longer than a frame goes on beside the
/// painting (see waitWhilePainting).
class PaintingPlatform {
public:
    /// What `platform` refers to outlives this.
    explicit PaintingPlatform(const Platform& platform)
        : platform_(platform),
          commands_(platform.commands),
          files_(platform.files),
          monochrome_(platform.monochrome) {}

    /// Refers to this object and to what the platform given referred to.
    Platform ports();

private:
    Platform platform_;
    PaintingCommandRunner commands_;
    PaintingFileManager files_;
    PaintingMonochromeFilter monochrome_;
};

} // namespace dubrix
