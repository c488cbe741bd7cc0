#include "platform/posix/PosixFileManager.h"
#include "tests/support/TemporaryFolder.h"

#include <set>
#include <sys/stat.h>

namespace dubrix {

namespace fs = std::filesystem;

class PosixFileManagerTest : public testing::Test {
protected:
    PosixFileManagerTest() {
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

TEST_F(PosixFileManagerTest, RemovesOnlyBelowTmp) {
    using namespace std::string_literals;
    for (const std::string& path :
         {""s, "/"s, "/tmp"s, "/tmp/"s, "/tmp//"s, "/tmp/./"s, "/tmp/../var/outside/"s,
          "/tmp/My App/.."s, "/tmp/./file"s, "/tmp//file"s, "/tmp/link/file"s,
          "/tmp/My App/Payload/X.app/astray/file"s, "/var/outside/file"s, "/tmpfile"s, "tmp/file"s,
          "/tmp/file\0more"s}) {
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

TEST_F(PosixFileManagerTest, PathsIntoAStagedBundleEndInside) {
    const std::string bundle = "/tmp/My App/Payload/X.app/";
    for (const std::string& path :
         {bundle, bundle + "/Info.plist", bundle + "here/here/Info.plist",
          bundle + "here/../Info.plist", // by its text
          bundle + "../X.app/Info.plist", std::string("/tmp/My App/Payload"),
          std::string("/tmp/link/file"), std::string("//tmp///file"),
          std::string("/../../../../tmp/file")}) // nothing lies above the root
        EXPECT_TRUE(files.fileExistsAtPath(path)) << path;
    for (const std::string& path :
         {bundle + "../../../file", bundle + "..", bundle + "astray/file", bundle + "astray",
          bundle + "missing/../../../../../var/outside/file", std::string(),
          std::string("/tmp/file\0", 10)})
        EXPECT_FALSE(files.fileExistsAtPath(path)) << path;

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

TEST_F(PosixFileManagerTest, MakesFoldersAndMeasuresWhatIsBelow) {
    for (const char* const path : {"/tmp/a/b c/", "/tmp/a/b c/", "/tmp/My App/Payload"})
        EXPECT_TRUE(files.createDirectoryAtPath(path)) << path;
    EXPECT_TRUE(fs::is_directory(root / "tmp/a/b c"));
    for (const char* const path : {"/tmp/file", "/tmp/file/below"})
        EXPECT_FALSE(files.createDirectoryAtPath(path)) << path;

    // A file, a link "." and one to somewhere else, two folders: links are measured themselves.
    const auto sizeOf = [this](const char* name) {
        struct stat status{};
        EXPECT_EQ(::lstat((root / "tmp/My App" / name).c_str(), &status), 0);
        return status.st_size;
    };
    const auto sizes = files.sizesOfItemsBelowPath("/tmp/My App//");
    EXPECT_EQ(std::multiset(sizes.begin(), sizes.end()),
              (std::multiset<std::int64_t>{4, 1, sizeOf("Payload/X.app/astray"), sizeOf("Payload"),
                                           sizeOf("Payload/X.app")}));
    for (const char* const path : {"/tmp/file", "/none"})
        EXPECT_TRUE(files.sizesOfItemsBelowPath(path).empty()) << path;
}

} // namespace dubrix
