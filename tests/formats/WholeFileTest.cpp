#include "formats/WholeFile.h"
#include "tests/support/TemporaryFolder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

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

TEST(WholeFile, TheNextWriteSweepsWhatAKilledWriterLeft) {
    const TemporaryFolder folder;
    for (const char* name :
         {".dubrix-killed", ".dubrix-atwork", ".dubrix-sevenxx", "dubrix-killed"})
        putFile(folder / name, "half");
    fs::create_symlink("target", folder / ".dubrix-linked");
    const int atWork = ::open((folder / ".dubrix-atwork").c_str(), O_RDONLY | O_CLOEXEC);
    ASSERT_EQ(::flock(atWork, LOCK_EX), 0);
    EXPECT_TRUE(replaceWholeFile(folder / "a", "new"));
    ::close(atWork);
    EXPECT_FALSE(fs::exists(folder / ".dubrix-killed"));
    for (const char* name : {".dubrix-atwork", ".dubrix-sevenxx", "dubrix-killed"})
        EXPECT_EQ(contentsOf(folder / name), "half") << name;
    EXPECT_TRUE(fs::is_symlink(folder / ".dubrix-linked"));
    EXPECT_EQ(contentsOf(folder / "a"), "new");
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
