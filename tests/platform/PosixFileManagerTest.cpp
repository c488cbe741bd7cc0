#include "platform/posix/PosixFileManager.h"
#include "tests/support/TemporaryFolder.h"

#include <algorithm>
#include <sys/stat.h>

namespace dubrix {

namespace fs = std::filesystem;

class LinuxFileManagerTest : public testing::Test {
protected:
    LinuxFileManagerTest() {
        putFile(root / "tmp/My App/Payload/X.app/Info.plist", "info");
        putFile(root / "tmp/file", "a file");
        putFile(root / "var/outside/file", "outside");
        fs::create_symlink("../var/outside", root / "tmp/link");
        fs::create_symlink("../../../../var/outside", root / "tmp/My App/Payload/X.app/astray");
        fs::create_symlink(".", root / "tmp/My App/Payload/X.app/here");
    }
    bool outsideIsWhole() const { return contentsOf(root / "var/outside/file") == "outside"; }

    TemporaryFolder folder;
    const fs::path root = folder / "device";
    PosixFileManager files{root};
};

TEST_F(LinuxFileManagerTest, RemovesOnlyBelowTmp) {
    using namespace std::string_literals;
    for (const std::string& path :
         {""s, "/"s, "/tmp"s, "/tmp/"s, "/tmp//"s, "/tmp/./"s, "/tmp/../"s, "/tmp/../var/outside/"s,
          "/tmp/My App/../../var/outside"s, "/tmp/My App/.."s, "/tmp/./file"s, "/tmp//file"s,
          "/tmp/link/file"s, "/tmp/My App/Payload/X.app/astray/file"s, "/var/outside/"s,
          "/var/outside/file"s, "/tmpfile"s, "tmp/file"s, "/tmp/file\0more"s}) {
        EXPECT_FALSE(files.removeItemAtPath(path)) << path;
        EXPECT_TRUE(outsideIsWhole() && fs::exists(root / "tmp/file")) << path;
    }
    EXPECT_TRUE(files.removeItemAtPath("/tmp/My App/"));
    EXPECT_TRUE(files.removeItemAtPath("/tmp/link/")) << "the link itself";
    EXPECT_TRUE(files.removeItemAtPath("/tmp/file"));
    EXPECT_TRUE(fs::is_empty(root / "tmp") && outsideIsWhole());

    fs::remove(root / "tmp");
    fs::create_symlink("var/outside", root / "tmp");
    EXPECT_TRUE(files.removeItemAtPath("/tmp/file")) << "the device's tmp may be elsewhere itself";
}

TEST_F(LinuxFileManagerTest, PathsIntoAStagedBundleEndInside) {
    const std::string bundle = "/tmp/My App/Payload/X.app/";
    const struct {
        std::string path;
        bool exists;
    } cases[] = {
        {bundle, true},
        {bundle + "/Info.plist", true},
        {bundle + "here/here/Info.plist", true},
        {bundle + "here/../Info.plist", true}, // by its text
        {bundle + "../X.app/Info.plist", true},
        {bundle + "../../../file", false},
        {bundle + "..", false},
        {bundle + "astray/file", false},
        {bundle + "astray", false},
        {bundle + "missing/../../../../../var/outside/file", false},
        {"/tmp/My App/Payload", true},
        {"/tmp/link/file", true},
        {"//tmp///file", true},
        {"/../../../../tmp/file", true}, // nothing lies above the root
        {"", false},
        {std::string("/tmp/file\0", 10), false},
    };
    for (const auto& [path, exists] : cases)
        EXPECT_EQ(files.fileExistsAtPath(path), exists) << path;

    EXPECT_EQ(files.contentsAtPath(bundle + "Info.plist"), "info");
    EXPECT_EQ(files.contentsAtPath(bundle + "astray/file"), std::nullopt);
    EXPECT_EQ(files.contentsAtPath(bundle), std::nullopt);
    EXPECT_FALSE(files.writeToFile(bundle + "astray/file", "new"));
    EXPECT_FALSE(files.writeToFile(bundle + "astray/new", "new"));
    EXPECT_FALSE(files.writeToFile(bundle + "../../../../var/outside/file", "new"));
    EXPECT_FALSE(files.writeToFile("/tmp/missing/file", "new"));
    EXPECT_TRUE(outsideIsWhole() && !fs::exists(root / "var/outside/new"));
    EXPECT_TRUE(files.writeToFile(bundle + "here/Info.plist", "new"));
    EXPECT_EQ(contentsOf(root / "tmp/My App/Payload/X.app/Info.plist"), "new");

    // A bundle that is itself a link is measured by where it leads.
    fs::create_directory_symlink("../../../var/outside", root / "tmp/My App/Payload/Y.app");
    EXPECT_TRUE(files.fileExistsAtPath("/tmp/My App/Payload/Y.app/file"));
}

TEST_F(LinuxFileManagerTest, MakesFoldersAndMeasuresWhatIsBelow) {
    for (const char* const path : {"/tmp/a/b c/", "/tmp/a/b c/", "/tmp/My App/Payload"})
        EXPECT_TRUE(files.createDirectoryAtPath(path)) << path;
    EXPECT_TRUE(fs::is_directory(root / "tmp/a/b c"));
    for (const char* const path : {"/tmp/file", "/tmp/file/below"})
        EXPECT_FALSE(files.createDirectoryAtPath(path)) << path;

    // A file of 4 bytes, a link "." and one to somewhere else, two folders.
    auto sizes = files.sizesOfItemsBelowPath("/tmp/My App//");
    std::vector<std::int64_t> expected;
    for (const char* const name : {"Payload", "Payload/X.app", "Payload/X.app/Info.plist",
                                   "Payload/X.app/astray", "Payload/X.app/here"}) {
        struct stat status{};
        ASSERT_EQ(::lstat((root / "tmp/My App" / name).c_str(), &status), 0);
        expected.push_back(status.st_size);
    }
    std::ranges::sort(sizes);
    std::ranges::sort(expected);
    EXPECT_EQ(sizes, expected);
    EXPECT_EQ(std::ranges::count(sizes, 4) + std::ranges::count(sizes, 1), 2);
    for (const char* const path : {"/tmp/file", "/none"})
        EXPECT_TRUE(files.sizesOfItemsBelowPath(path).empty()) << path;
}

} // namespace dubrix
