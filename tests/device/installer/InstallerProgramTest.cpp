#include "device/installer/BundleStore.h"
#include "formats/lists/PropertyList.h"
#include "tests/device/DeviceFolder.h"

#include <csignal>
#include <fcntl.h>
#include <random>

namespace dubrix {

namespace {

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

/// `before` goes before the program, for its shell.
Ended run(const DeviceFolder& device, const std::string& arguments,
          const std::string& before = "") {
    const auto output = (device.folder() / "output").native();
    const auto errors = (device.folder() / "errors").native();
    const std::string command = "cd '" + device.folder().path().native() + "' && { " + before +
                                "LC_ALL=C '" + IPAINSTALLER + "' " + arguments + "; } >'" + output +
                                "' 2>'" + errors + "'";
    const int status = std::system(command.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, contentsOf(output), contentsOf(errors)};
}

} // namespace

TEST(InstallerProgram, SaysOneLineForEachApplication) {
    const DeviceFolder device;
    PropertyList info = PropertyList::dictionary();
    info.setValueForKey("CFBundleIdentifier", PropertyList::string("com.example.app3"));
    info.setValueForKey("CFBundleDisplayName", PropertyList::string("例\tExample\n3"));
    device.archive("my app.ipa", zipOf({{"Payload/例 X.app/Info.plist", info.xml()}}));
    device.archive("bad.ipa", "no archive");
    device.application("com.example.App", "4.2 Enhanced");

    Ended result = run(device, "--root device -f 'my app.ipa' bad.ipa com.example.App-*.ipa");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "Installed com.example.app3 (例 Example 3)\n"
                             "Installed com.example.App (X)\n");
    EXPECT_EQ(result.errors, "ipainstaller: bad.ipa: is not an archive\n");

    result = run(device, "--root device --progress lines -f 'my app.ipa' bad.ipa");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "progress 0 1 of 2: my app.ipa\nprogress 100\n"
                             "Installed com.example.app3 (例 Example 3), replaced the one before\n"
                             "progress 0 2 of 2: bad.ipa\n"
                             "Installed 1 of 2 applications; not installed: bad.ipa\n");

    device.application("com.example.App", "4\t2");
    result = run(device, "--root device --report fields -f com.example.App-*.ipa bad.ipa");
    EXPECT_EQ(result.output, "replaced\tcom.example.App\tX\t4 2\t4.2 Enhanced\n"
                             "replaced\tcom.example.App\tX\t4.2 Enhanced\t4 2\n"
                             "failed\tbad.ipa: is not an archive\n");
    EXPECT_EQ(result.errors, "");
    result = run(device, "--root device -f 'com.example.App-4\t2.ipa' com.example.App-4.2*.ipa");
    EXPECT_EQ(result.output, "Installed com.example.App (X), replaced 4.2 Enhanced by 4 2\n"
                             "Installed com.example.App (X), replaced 4 2 by 4.2 Enhanced\n");

    result = run(device, "--root device -l");
    EXPECT_EQ(result.status, 0);
    const auto path = [&](const char* name) { return *device.registry().pathOf(name); };
    EXPECT_EQ(result.output, "com.example.App\tX\t4.2 Enhanced\t" + path("com.example.App") +
                                 "\ncom.example.app3\t例 Example 3\t\t" + path("com.example.app3") +
                                 "\n");

    result = run(device, "--root device -b com.example.app3 out.ipa");
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(run(device, "--root device -u com.example.app3").output,
              "Removed com.example.app3\n");
    EXPECT_EQ(run(device, "--root device -u com.example.app3").status, 1);
    EXPECT_EQ(run(device, "--root device -f out.ipa").status, 0);
    EXPECT_EQ(path("com.example.app3").substr(path("com.example.app3").rfind('/')), "/例 X.app");
    EXPECT_EQ(run(device, "--root missing -l").status, 1);
}

TEST(InstallerProgram, TellsMistakesFromFailures) {
    const DeviceFolder device;
    for (const char* mistake : {"",
                                "-f",
                                "-u",
                                "-u a b",
                                "-b a",
                                "-b a b c",
                                "-l a",
                                "-x",
                                "-f a -l",
                                "-l -l",
                                "a.ipa",
                                "-- -l",
                                "-u --",
                                "-u -l",
                                "-l --descriptor 7",
                                "-b a b --descriptor 1",
                                "-b a b --descriptor x",
                                "-b a b --descriptor",
                                "-l --progress",
                                "--progress half -l",
                                "-l --root",
                                "-l --root ''",
                                "-f --force a.ipa",
                                "-u ''"}) {
        const Ended result = run(device, mistake);
        EXPECT_EQ(result.status, 2) << mistake;
        EXPECT_EQ(result.output, "") << mistake;
        EXPECT_NE(result.errors.find("Usage:"), std::string::npos) << mistake;
    }
    const Ended help = run(device, "--help");
    EXPECT_EQ(help.status, 0);
    EXPECT_EQ(help.output.rfind("Usage:", 0), 0u);
}

TEST(InstallerProgram, NamesLikeOptionsCanBeListedSavedAndRemoved) {
    const DeviceFolder device;
    const auto links = device.root() / "var/containers/Bundle/Registry";
    for (const std::string odd : {"-l", "--help", "--"}) {
        ASSERT_TRUE(device.installer().install(device.application("com.example.app", "1")));
        std::filesystem::rename(links / "com.example.app", links / odd);
        EXPECT_EQ(run(device, "--root device -l").output.rfind(odd + "\tX\t1\t", 0), 0U);
        EXPECT_EQ(run(device, "--root device -b -- " + odd + " -out.ipa").output,
                  "Saved " + odd + " (-out.ipa)\n");
        EXPECT_EQ(run(device, "--root device -u -- " + odd).output, "Removed " + odd + "\n");
        EXPECT_EQ(run(device, "--root device -l").output, "");
        EXPECT_EQ(run(device, "--root device -f -- -out.ipa").status, 0);
        EXPECT_EQ(run(device, "--root device -u com.example.app").status, 0);
    }
}

TEST(InstallerProgram, TellsWhatIsNoApplicationAtAllAndARegistryThatCannotBeRead) {
    const DeviceFolder device;
    device.archive("text.ipa", "no archive");
    device.archive("other.ipa", zipOf({{"a", "a"}}));
    device.archive("damaged.ipa", zipOf({{"Payload/X.app/Info.plist", "damaged"}}));
    PropertyList info = PropertyList::dictionary();
    info.setValueForKey("CFBundleIdentifier", PropertyList::string("com.example.app"));
    info.setValueForKey("CFBundleDisplayName", PropertyList::string("a\u009bb\u202ec\u2028d"));
    device.archive("odd.ipa", zipOf({{"Payload/X.app/Info.plist", info.xml()}}));
    const struct {
        const char* archives;
        int status;
    } cases[] = {{"text.ipa", 3}, {"other.ipa", 3},          {"damaged.ipa", 1}, {"missing.ipa", 1},
                 {"device", 3},   {"text.ipa other.ipa", 1}, {"odd.ipa", 0}};
    for (const auto& [archives, status] : cases)
        EXPECT_EQ(run(device, std::string("--root device -f ") + archives).status, status)
            << archives;
    EXPECT_EQ(run(device, "--root device -l").output.rfind("com.example.app\ta b c d\t", 0), 0U);

    const auto links = device.root() / "var/containers/Bundle/Registry";
    std::filesystem::remove_all(links);
    EXPECT_EQ(run(device, "--root device -l").status, 0) << "a device without applications";
    putFile(links, "a file");
    const Ended result = run(device, "--root device -l");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "ipainstaller: cannot read /var/containers/Bundle/Registry: "
                             "Not a directory\n");
}

TEST(InstallerProgram, SavesIntoAnOpenEmptyFileOnly) {
    const DeviceFolder device;
    ASSERT_TRUE(device.installer().install(
        device.application("com.example.app", "1", {{"large", noise(200'000)}})));
    device.archive("filled", "already here");
    ASSERT_EQ(::mkfifo((device.folder() / "pipe").c_str(), 0600), 0);
    const std::string save = "--root device -b com.example.app Notes.ipa";
    Ended result = run(device, save + " --descriptor 7 7>out");
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "Saved com.example.app (Notes.ipa)\n");
    EXPECT_FALSE(std::filesystem::exists(device.folder() / "Notes.ipa"));
    EXPECT_EQ(run(device, "--root device -f out").status, 0);
    for (const char* wrong : {"7>&-", "7>>filled", "7<out", "7</", "7<>pipe", "7>/dev/null"}) {
        result = run(device, save + " --descriptor 7 " + wrong);
        EXPECT_EQ(result.status, 1) << wrong;
        EXPECT_EQ(result.errors.rfind("ipainstaller: Notes.ipa: cannot be written", 0), 0U);
    }
    EXPECT_EQ(contentsOf(device.folder() / "filled"), "already here");

    // Whose file may not become so large hears of it, and nothing is left.
    for (const char* way : {"", " --descriptor 7 7>limited"}) {
        result = run(device, save + way + "; status=$?; [ ! -s limited ] && exit $status",
                     "ulimit -f 64; ");
        EXPECT_EQ(result.status, 1) << way;
        EXPECT_EQ(result.errors, "ipainstaller: Notes.ipa: cannot be written: File too large\n");
    }
    EXPECT_FALSE(std::filesystem::exists(device.folder() / "Notes.ipa"));
    EXPECT_EQ(run(device, save, "umask 077; ").status, 0);
    EXPECT_EQ(std::filesystem::status(device.folder() / "Notes.ipa").permissions(),
              std::filesystem::perms(0600));
    for (const auto& entry : std::filesystem::directory_iterator(device.folder().path()))
        EXPECT_NE(entry.path().filename().native()[0], '.') << entry.path();
}

TEST(InstallerProgram, SaysThatItWaitsAndCanBeInterrupted) {
    const DeviceFolder device;
    ASSERT_TRUE(device.installer().install(device.application("com.example.app", "1")));
    auto held = BundleStore::open(device.registry());
    ASSERT_TRUE(held);
    for (const int signal : {SIGINT, SIGTERM}) {
        int ends[2];
        ASSERT_EQ(::pipe2(ends, O_CLOEXEC), 0);
        const pid_t child = ::fork();
        if (child == 0) {
            ::dup2(ends[1], STDERR_FILENO);
            ::execl(IPAINSTALLER, IPAINSTALLER, "--root", device.root().c_str(), "-u",
                    "com.example.app", nullptr);
            ::_exit(127);
        }
        ::close(ends[1]);
        std::string said(200, '\0');
        said.resize(static_cast<std::size_t>(
            std::max<ssize_t>(::read(ends[0], said.data(), said.size()), 0)));
        EXPECT_EQ(said, "ipainstaller: waiting for another installer to finish\n");
        ::kill(child, signal);
        int status = 0;
        ::waitpid(child, &status, 0);
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == signal) << status;
        ::close(ends[0]);
    }
}

} // namespace dubrix
