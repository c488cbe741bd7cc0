#pragma once

#include <cstddef>
#include <string>

namespace dubrix {

/// The bare system and libplist calls that the benchmarks compare with: what the works need at the
/// least, written down without any check. Each gives a figure that depends on all that was read.
class BareDevice {
public:
    explicit BareDevice(std::string root) : root_(std::move(root)) {}

    /// One link read for each of the numbers 1 to 100, and the version from the property list
    /// there.
    std::size_t readVersions(const std::string& source) const;
    /// The name from the Info.plist of every registered application.
    std::size_t readAllNames() const;
    /// Writes the bytes beside the file and renames.
    static void replace(const std::string& path, const std::string& bytes);
    /// The length of the text for `key` in the property list at `path`.
    static std::size_t readText(const std::string& path, const char* key);

private:
    std::string bundleOf(const std::string& identifier) const;

    std::string root_;
};

} // namespace dubrix
