#pragma once

#include "platform/FileManager.h"

#include <filesystem>

namespace dubrix {

/// Files of the device whose root folder is `root` ("/" inside the device's own namespace).
class PosixFileManager final : public FileManager {
public:
    explicit PosixFileManager(std::filesystem::path root) : root_(std::move(root)) {}

    bool fileExistsAtPath(const std::string& path) const override;
    bool createDirectoryAtPath(const std::string& path) override;
    bool removeItemAtPath(const std::string& path) override;
    std::vector<std::int64_t> sizesOfItemsBelowPath(const std::string& path) const override;
    std::optional<std::string> contentsAtPath(const std::string& path) const override;
    bool writeToFile(const std::string& path, std::string_view bytes) override;

private:
    /// The place below the root, with ".." resolved so that no path leads above the root.
    std::filesystem::path resolve(const std::string& path) const;
    /// False for a path that enters a staged bundle and leaves it again, or is no path at all.
    bool staysInPlace(const std::string& path) const;

    std::filesystem::path root_;
};

} // namespace dubrix
