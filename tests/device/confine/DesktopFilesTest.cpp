#include "device/confine/GivenFile.h"
#include "device/confine/ResultFile.h"
#include "files/FileTree.h"
#include "tests/device/DeviceFolder.h"

#include <fcntl.h>

namespace dubrix {

namespace {

namespace fs = std::filesystem;

Result<ResultFile> begun(const fs::path& file, ResultFile::Existing existing,
                         const std::string& bytes) {
    Result<ResultFile> result = ResultFile::begin(file.native(), existing);
    EXPECT_TRUE(!result || writeAll(result->descriptor(), bytes));
    return result;
}

} // namespace

TEST(GivenFileTest, whatAWindowAsksForIsReachedWithoutLinksAndOffTheDevice) {
    const TemporaryFolder temporary;
    const fs::path folder = fs::canonical(temporary.path());
    const fs::path device = folder / "device";
    fs::create_directories(device / "var/Inside.app");
    fs::create_directories(folder / "place/Outside.app");
    fs::create_directories(folder / "place/plain");
    putFile(folder / "place/a.ipa", "bytes");
    putFile(folder / "place/empty.ipa", "");
    putFile(device / "var/b.ipa", "bytes");
    fs::create_symlink("a.ipa", folder / "place/link.ipa");
    fs::create_directory_symlink("place", folder / "way");
    fs::create_directory_symlink(folder / "place/plain", folder / "place/Link.app");
    ASSERT_EQ(::mkfifo((folder / "place/pipe.ipa").c_str(), 0600), 0);
    const struct {
        std::string path;
        Given kind;
        bool given;
    } cases[] = {
        {folder / "place/a.ipa", Given::Archive, true},
        {folder / "place//./a.ipa", Given::Archive, true},
        {device / "var/b.ipa", Given::Archive, true},
        {folder / "place/link.ipa", Given::Archive, false},
        {folder / "way/a.ipa", Given::Archive, false},
        {folder / "way/../place/a.ipa", Given::Archive, false},
        {folder / "place/../place/a.ipa", Given::Archive, false},
        {folder / "place/empty.ipa", Given::Archive, false},
        {folder / "place/pipe.ipa", Given::Archive, false},
        {folder / "place/plain", Given::Archive, false},
        {folder / "place/none", Given::Archive, false},
        {"/bin/true", Given::Archive, true}, // by a link at the root, on most systems
        {"/dev/zero", Given::Archive, false},
        {"/proc/self/environ", Given::Archive, false},
        {"a.ipa", Given::Archive, false},
        {"", Given::Archive, false},
        {folder / "place/Outside.app", Given::Folder, true},
        {folder / "place/Outside.app/", Given::Folder, true},
        {folder / "place/plain", Given::Folder, false},
        {folder / "place/Link.app", Given::Folder, false},
        {device / "var/Inside.app", Given::Folder, false},
        {folder / "place/a.ipa", Given::Folder, false},
        {"/", Given::Folder, false},
    };
    for (const auto& [path, kind, given] : cases)
        EXPECT_EQ(openAskedFor(path, kind, device.native()).isOpen(), given) << path;
    // The person's own word leads through links.
    EXPECT_TRUE(openNamed(folder / "way/link.ipa", Given::Archive).isOpen());
    EXPECT_FALSE(openNamed(folder / "place/pipe.ipa", Given::Archive).isOpen());
}

TEST(ResultFileTest, isThereWholeOrNotAtAll) {
    const TemporaryFolder folder;
    const fs::path file = folder / "a.ipa";
    using enum ResultFile::Existing;
    const mode_t before = ::umask(077);
    putFile(file, "old");
    {
        const Result<ResultFile> abandoned = begun(file, Replaced, "half");
        ASSERT_TRUE(abandoned);
        EXPECT_EQ(contentsBelow(folder.path()).size(), 1U);
    }
    EXPECT_EQ(contentsOf(file), "old");
    // Two at once, to be told apart to the end.
    Result<ResultFile> one = begun(file, Replaced, "one");
    Result<ResultFile> other = begun(file, Replaced, "other");
    Result<ResultFile> kept = begun(file, Kept, "second");
    Result<ResultFile> third = begun(file, Kept, "third");
    ASSERT_TRUE(one && other && kept && third);
    EXPECT_EQ(*other->finish(), file.native());
    EXPECT_EQ(contentsOf(file), "other");
    EXPECT_EQ(*one->finish(), file.native());
    EXPECT_EQ(contentsOf(file), "one");
    EXPECT_EQ(*third->finish(), (folder / "a (2).ipa").native());
    EXPECT_EQ(*kept->finish(), (folder / "a (3).ipa").native());
    EXPECT_EQ(contentsOf(folder / "a (3).ipa"), "second");
    ::umask(before);
    EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(contentsBelow(folder.path()).size(), 3U);
    // What is no file is not replaced.
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_FALSE(begun(folder / "pipe", Replaced, ""));
    EXPECT_FALSE(begun(folder.path(), Replaced, ""));
    EXPECT_FALSE(begun(folder / "none/a.ipa", Replaced, ""));
}

} // namespace dubrix
