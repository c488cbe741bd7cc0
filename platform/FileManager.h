#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace dubrix {

/// Files under the phone's own absolute paths. Any thread; nothing is cached. Paths are used as
/// given: doubled slashes count as one, a trailing slash is allowed.
class FileManager {
public:
    virtual ~FileManager() = default;

    /// Whether a file or folder stands at `path` (links followed). Inside a staged bundle
    /// ("/tmp/…/Payload/….app/…") a path that leaves the bundle, by ".." or through a link, does
    /// not exist.
    virtual bool fileExistsAtPath(const std::string& path) const = 0;

    /// Makes the folder and its missing parents. True when it stands afterwards.
    virtual bool createDirectoryAtPath(const std::string& path) = 0;

    /// Removes the file, link or folder at `path` with everything in it; links are not followed.
    /// Refused (false, nothing removed) for anything but something below "/tmp", named without
    /// empty, "." or ".." components. False also when a part could not be removed.
    virtual bool removeItemAtPath(const std::string& path) = 0;

    /// The size in bytes of everything below the folder, recursively, in no order: what the file
    /// system gives for each entry itself, folders included (a link is measured, not followed).
    /// What cannot be read is left out.
    virtual std::vector<std::int64_t> sizesOfItemsBelowPath(const std::string& path) const = 0;

    /// The bytes of the regular file at `path`; nothing when it cannot be read whole.
    virtual std::optional<std::string> contentsAtPath(const std::string& path) const = 0;

    /// Puts `bytes` at `path`, whole or not at all (temporary file in the same folder, renamed).
    /// A replaced file hands its permissions on. False on failure, the old file as it was; also
    /// for a path that leaves a staged bundle.
    virtual bool writeToFile(const std::string& path, std::string_view bytes) = 0;
};

} // namespace dubrix
