#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sstream>
#include <string>

namespace dubrix {

/// A fresh folder of its own for one test, removed with everything in it at the end.
class TemporaryFolder {
public:
    explicit TemporaryFolder(
        const std::filesystem::path& parent = std::filesystem::temp_directory_path()) {
        std::string pattern = (parent / "dubrix-test-XXXXXX").string();
        path_ = ::mkdtemp(pattern.data());
    }
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }
    std::filesystem::path operator/(const std::filesystem::path& below) const {
        return path_ / below;
    }

private:
    std::filesystem::path path_;
};

inline std::string contentsOf(const std::filesystem::path& path) {
    std::ifstream stream(path, std::ios::binary);
    std::ostringstream bytes;
    bytes << stream.rdbuf();
    return bytes.str();
}

/// Writes a file for a test to work on, its folders included.
inline void putFile(const std::filesystem::path& path, const std::string& bytes) {
    std::filesystem::create_directories(path.parent_path());
    std::ofstream stream(path, std::ios::binary);
    stream << bytes;
    ASSERT_TRUE(stream.flush().good()) << path;
}

} // namespace dubrix
