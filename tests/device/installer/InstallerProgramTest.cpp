#include "device/installer/BundleStore.h"
#include "formats/lists/PropertyList.h"
#include "tests/device/DeviceFolder.h"

#include <random>

namespace dubrix {

namespace {

namespace fs = std::filesystem;

struct Ended {
    int status;
    std::string output;
    std::string errors;
};

/// What does not become smaller in an archive.
std::string noise(std::size_t size) {
    std::string bytes(size, '\0');
    std::generate(bytes.begin(), bytes.end(), std::minstd_rand());
    return bytes;
}

class InstallerProgram : public testing::Test {
protected:
    /// `before` goes before the program, for its shell.
    Ended run(const std::string& arguments, const std::string& before = "") const {
        const std::string folder = device.folder().path();
        const std::string command = "cd '" + folder + "' && { " + before +
                                    "LC_ALL=C '" IPAINSTALLER "' " + arguments +
                                    "; } >output 2>errors";
        const int status = std::system(command.c_str());
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1,
                contentsOf(device.folder() / "output"), contentsOf(device.folder() / "errors")};
    }

    const DeviceFolder device;
    const fs::path links = device.root() / "var/containers/Bundle/Registry";
};

} // namespace

TEST_F(InstallerProgram, SaysOneLineForEachApplication) {
    PropertyList info = *PropertyList::parse("{CFBundleIdentifier = com.example.app3;}");
    info.setValueForKey("CFBundleDisplayName",
                        PropertyList::string("例\ta\u009bb\u202ec\u2028d\n3"));
    std::string zip = zipOf({{"Payload/例 X.app/Info.plist", info.xml()}});
    zip.replace(zip.size() - 2, 2, bytesOf(22, 2) + "PK\5\6" + std::string(16, 0) + bytesOf(1, 2));
    device.archive("my app.ipa", zip); // with a comment that is like an end
    device.archive("text.ipa", "no archive");
    device.archive("other.ipa", zipOf({{"a", "a"}}));
    device.archive("damaged.ipa", zipOf({{"Payload/X.app/Info.plist", "damaged"}}));
    device.application("com.example.App", "4.2 Enhanced");
    device.application("com.example.App", "4\t2");
    const std::string noArchive = "ipainstaller: text.ipa: is not an archive\n";
    const struct {
        std::string arguments;
        int status;
        std::string output;
        std::string errors;
    } cases[] = {
        {"-f 'my app.ipa' text.ipa com.example.App-4.2*.ipa", 1,
         "Installed com.example.app3 (例 a b c d 3)\nInstalled com.example.App (X)\n", noArchive},
        {"--progress lines -f 'com.example.App-4\t2.ipa' text.ipa", 1,
         "progress 0 1 of 2: com.example.App-4 2.ipa\nprogress 100\n"
         "Installed com.example.App (X), replaced 4.2 Enhanced by 4 2\n"
         "progress 0 2 of 2: text.ipa\n"
         "Installed 1 of 2 applications; not installed: text.ipa\n",
         noArchive},
        {"-f text.ipa", 3, "", noArchive},
        {"-f other.ipa", 3, "", "ipainstaller: other.ipa: holds no application (Payload/*.app)\n"},
        {"-f damaged.ipa", 1, "", "ipainstaller: damaged.ipa: has a damaged Info.plist\n"},
        {"-f missing.ipa", 1, "",
         "ipainstaller: missing.ipa: cannot be opened: No such file or directory\n"},
        {"-U com.example.app3", 0, "Removed com.example.app3, can be put back\n", ""},
        {"-r com.example.app3", 0, "Put back com.example.app3\n", ""},
        {"-U com.example.app3", 0, "Removed com.example.app3, can be put back\n", ""},
        {"--report fields -u com.example.App", 0, "removed\tcom.example.App\n", ""},
        {"-r com.example.app3", 1, "",
         "ipainstaller: com.example.app3: cannot be put back any more\n"},
        {"-f 'my app.ipa'", 0, "Installed com.example.app3 (例 a b c d 3)\n", ""},
    };
    for (const auto& [arguments, status, output, errors] : cases) {
        const Ended result = run("--root device " + arguments);
        EXPECT_EQ(result.status, status) << arguments;
        EXPECT_EQ(result.output, output) << arguments;
        EXPECT_EQ(result.errors, errors) << arguments;
    }
    const std::string path = *device.registry().pathOf("com.example.app3");
    EXPECT_TRUE(path.ends_with("/例 X.app"));
    EXPECT_EQ(run("--root device -l").output, "com.example.app3\t例 a b c d 3\t\t" + path + "\n");

    ASSERT_TRUE(device.registry().enter("com.example.system", "/Applications/Settings.app"));
    for (const std::string system : {"com.example.system", "com.example.settings"})
        EXPECT_EQ(run("--root device -u " + system).errors,
                  "ipainstaller: " + system + ": is a system application and cannot be removed\n");
    putFile(device.root() / "export/Docs.app/secret", "secret");
    fs::create_symlink("/export/Docs.app", links / "com.example.docs");
    EXPECT_EQ(
        run("--root device -b com.example.docs docs.ipa").errors,
        "ipainstaller: com.example.docs: is registered, but leads to no application's folder\n");
    fs::remove_all(links);
    EXPECT_EQ(run("--root device -l").status, 0) << "a device without applications";
    putFile(links, "a file");
    EXPECT_EQ(run("--root device -l").errors, "ipainstaller: cannot read "
                                              "/var/containers/Bundle/Registry: Not a directory\n");
    EXPECT_EQ(run("--root missing -l").errors, "ipainstaller: missing is not a folder\n");
    EXPECT_EQ(run("--root device -b com.example.docs missing/a.ipa").errors,
              "ipainstaller: a.ipa: cannot be written: No such file or directory\n");
}

TEST_F(InstallerProgram, TellsMistakesFromFailures) {
    std::istringstream mistakes(
        "\n-f\n-u\n-u a b\n-b a\n-b a b c\n-l a\n-x\n-f a -l\n-l -l\na.ipa\n"
        "-- -l\n-u --\n-u -l\n-l --descriptor 7\n-b a b --descriptor 1\n"
        "-b a b --descriptor 7x\n-b a b --descriptor\n-l --progress\n"
        "--progress half -l\n--report lines -l\n-l --root ''\n-u ''\n");
    for (std::string mistake; std::getline(mistakes, mistake);) {
        const Ended result = run(mistake);
        EXPECT_EQ(result.status, 2) << mistake;
        EXPECT_EQ(result.output, "") << mistake;
        EXPECT_NE(result.errors.find("Usage:"), std::string::npos) << mistake;
    }
    EXPECT_EQ(run("--help").output.rfind("Usage:", 0), 0u);
    ASSERT_TRUE(device.installer().install(device.application("com.example.app", "1")));
    fs::rename(links / "com.example.app", links / "--");
    EXPECT_EQ(run("--root device -b -- -- -out.ipa").output, "Saved -- (-out.ipa)\n");
    EXPECT_EQ(run("--root device -u -- --").output, "Removed --\n");
    EXPECT_EQ(run("--root device -f -- -out.ipa").status, 0);
}

TEST_F(InstallerProgram, SavesIntoAnOpenEmptyFileOnly) {
    ASSERT_TRUE(device.installer().install(
        device.application("com.example.app", "1", {{"large", noise(200'000)}})));
    device.archive("filled", "already here");
    ASSERT_EQ(::mkfifo((device.folder() / "pipe").c_str(), 0600), 0);
    const std::string save = "--root device -b com.example.app Notes.ipa";
    EXPECT_EQ(run(save + " --descriptor 7 7>out").output, "Saved com.example.app (Notes.ipa)\n");
    EXPECT_FALSE(fs::exists(device.folder() / "Notes.ipa"));
    EXPECT_EQ(run("--root device -f out").status, 0);
    const std::string cannot = "ipainstaller: Notes.ipa: cannot be written: ";
    for (const std::string wrong : {"7>&-", "7>>filled", "7<out", "7</", "7<>pipe", "7>/dev/null"})
        EXPECT_EQ(run(save + " --descriptor 7 " + wrong).errors,
                  cannot + (wrong == "7>&-" ? "Bad file descriptor\n"
                                            : "not an empty regular file open for writing\n"));
    EXPECT_EQ(contentsOf(device.folder() / "filled"), "already here");

    // Whose file may not become so large hears of it, and nothing is left.
    const auto before = device.snapshot();
    EXPECT_EQ(run("--root device -f out", "ulimit -f 64; ").errors,
              "ipainstaller: out: cannot be unpacked at large: File too large\n");
    EXPECT_TRUE(device.snapshot() == before);
    for (const char* way : {"", " --descriptor 7 7>limited"})
        EXPECT_EQ(run(save + way, "ulimit -f 64; ").errors, cannot + "File too large\n");
    EXPECT_EQ(contentsOf(device.folder() / "limited"), "");
    EXPECT_FALSE(fs::exists(device.folder() / "Notes.ipa"));
    EXPECT_EQ(run(save, "umask 077; ").status, 0);
    EXPECT_EQ(fs::status(device.folder() / "Notes.ipa").permissions(), fs::perms(0600));
    for (const auto& entry : fs::directory_iterator(device.folder().path()))
        EXPECT_NE(entry.path().filename().native()[0], '.') << entry.path();
}

TEST_F(InstallerProgram, SaysThatItWaitsForAnother) {
    ASSERT_TRUE(device.installer().install(device.application("com.example.app", "1")));
    auto held = std::make_unique<Result<BundleStore>>(BundleStore::open(device.registry()));
    ASSERT_TRUE(*held);
    const std::string command = "timeout 20 '" IPAINSTALLER "' --root '" + device.root().native() +
                                "' -u com.example.app 2>&1";
    std::FILE* const said = ::popen(command.c_str(), "r");
    char line[100] = "";
    EXPECT_STREQ(std::fgets(line, sizeof line, said),
                 "ipainstaller: waiting for another installer to finish\n");
    EXPECT_TRUE(device.registry().isInstalled("com.example.app"));
    held.reset();
    EXPECT_STREQ(std::fgets(line, sizeof line, said), "Removed com.example.app\n");
    EXPECT_EQ(::pclose(said), 0);
}

} // namespace dubrix
