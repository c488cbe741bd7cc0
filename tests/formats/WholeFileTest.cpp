#include "formats/WholeFile.h"
#include "tests/support/TemporaryFolder.h"

#include <sys/stat.h>

namespace dubrix {

namespace fs = std::filesystem;

TEST(WholeFile, ReplacesWholeAndKeepsPermissions) {
    const TemporaryFolder folder;
    const fs::path file = folder / "a";
    EXPECT_TRUE(replaceWholeFile(file, "first"));
    fs::permissions(file, fs::perms(0640));
    EXPECT_TRUE(replaceWholeFile(file, std::string("\0second", 7)));
    EXPECT_EQ(readWholeFile(file), std::string("\0second", 7));
    EXPECT_EQ(fs::status(file).permissions(), fs::perms(0640));
}

TEST(WholeFile, AFailureLeavesTheOldFileAndNoLeftovers) {
    const TemporaryFolder folder;
    putFile(folder / "target/inside", "old");
    EXPECT_FALSE(replaceWholeFile(folder / "target", "new")) << "a folder cannot be replaced";
    EXPECT_FALSE(replaceWholeFile(folder / "missing/file", "new"));
    EXPECT_EQ(contentsOf(folder / "target/inside"), "old");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 1);
}

TEST(WholeFile, ALinkIsReplacedNotFollowed) {
    const TemporaryFolder folder;
    putFile(folder / "outside", "untouched");
    fs::create_symlink("outside", folder / "link");
    EXPECT_TRUE(replaceWholeFile(folder / "link", "new"));
    EXPECT_EQ(contentsOf(folder / "outside"), "untouched");
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(folder / "link")));
}

TEST(WholeFile, ReadsOnlyRegularFilesWithinTheLimit) {
    const TemporaryFolder folder;
    putFile(folder / "five", "12345");
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(readWholeFile(folder / "five", 5), "12345");
    EXPECT_EQ(readWholeFile(folder / "five", 4), std::nullopt);
    EXPECT_EQ(readWholeFile(folder / "missing"), std::nullopt);
    EXPECT_EQ(readWholeFile(folder.path()), std::nullopt);
    EXPECT_EQ(readWholeFile(folder / "pipe"), std::nullopt);
}

} // namespace dubrix
