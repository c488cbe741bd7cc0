#include "terminal/Console.h"
#include "tests/proof/ProofDevice.h"

namespace dubrix {

namespace fs = std::filesystem;

namespace {

const std::string refusal = "Another duplication is running on this device.";

/// A device of which the source is what it was after every fault, and on which, once the fault is
/// gone, a duplicate comes out whole and nothing is left over.
class FaultyDevice : public ProofDevice {
public:
    FaultyDevice() : before_(bundle(source)) {}

    void expectUnharmed() const {
        EXPECT_EQ(bundle(source), before_);
        EXPECT_EQ(registry().identifiers(), std::vector<std::string>{source});
    }
    void expectFailure() const {
        EXPECT_EQ(request(), failure);
        expectUnharmed();
    }
    void expectRecovery() const {
        EXPECT_EQ(request(), success);
        Contents expected = before_;
        Contents made = bundle(duplicate);
        for (const char* changed : {"Info.plist", "Icon.png", "Icon@2x.png", "art/Badge.png"}) {
            EXPECT_NE(made[changed], expected[changed]) << changed;
            made.erase(changed);
            expected.erase(changed);
        }
        EXPECT_EQ(made, expected);
        EXPECT_EQ(bundle(source), before_);
        EXPECT_EQ(leftovers(), 0);
        EXPECT_TRUE(fs::is_empty(staging()));
    }

private:
    Contents before_;
};

/// Faults that are made by mounting.
class MountedFault : public testing::Test {
protected:
    void SetUp() override {
        if (!PrivateMounts::permitted())
            GTEST_SKIP() << "mounting is not permitted here";
    }
};

} // namespace

TEST_F(MountedFault, FullDisksAndReadOnlyFoldersLoseNothing) {
    const FaultyDevice device;
    const auto expectFailureWith = [&](const char* folder, std::size_t kilobytes) {
        SCOPED_TRACE(folder + std::to_string(kilobytes));
        PrivateMounts mounts;
        ASSERT_TRUE(kilobytes == 0 ? mounts.readOnly(device.root() / folder)
                                   : mounts.small(device.root() / folder, kilobytes * 1024));
        device.expectFailure();
    };
    // To nearly enough room: the copy, the edit, the tint and the archive run out of it.
    for (const std::size_t kilobytes : {0, 4, 20, 200, 212, 224, 236, 300, 400})
        expectFailureWith("tmp", kilobytes);
    for (const char* folder : {"var/containers/Bundle", "."})
        expectFailureWith(folder, 0);
    device.expectRecovery();
}

TEST_F(MountedFault, AFullDiskWhereApplicationsLieLosesNothing) {
    const FaultyDevice device;
    PrivateMounts mounts;
    const fs::path var = device.root() / "var", aside = device.folder() / "aside";
    constexpr auto all = fs::copy_options::recursive | fs::copy_options::copy_symlinks;
    fs::copy(var, aside, all);
    ASSERT_TRUE(mounts.small(var, 400 * 1024));
    fs::copy(aside, var, all | fs::copy_options::overwrite_existing);
    device.expectFailure();

    // Settings that no longer fit stay what they were.
    const std::string settings = contentsOf(device.settingsPath());
    device.run({"sh", "-c", "head -c 10000000 /dev/zero >'" + (var / "filler").native() + "'"});
    device.run(device.storing(std::string(100'000, 't')));
    EXPECT_EQ(contentsOf(device.settingsPath()), settings);
    EXPECT_EQ(std::distance(fs::directory_iterator(device.settingsPath().parent_path()), {}), 1);
    mounts.undo();
    device.expectRecovery();
}

TEST_F(MountedFault, WhatCouldBePutBackMakesWay) {
    const DeviceFolder device;
    fs::create_directories(device.root() / "var");
    PrivateMounts mounts;
    ASSERT_TRUE(mounts.small(device.root() / "var", 3'000'000));
    Installer installer = device.installer();
    const auto install = [&](const std::string& identifier, std::size_t size) {
        return static_cast<bool>(installer.install(
            device.application(identifier, "1", {{"large", std::string(size, 'l')}})));
    };
    ASSERT_TRUE(install("com.example.one", 2'000'000));
    ASSERT_TRUE(installer.uninstall("com.example.one", Installer::Removal::Undoable));
    ASSERT_TRUE(install("com.example.small", 100'000));
    ASSERT_TRUE(installer.putBack("com.example.one")) << "there was room for both";
    ASSERT_FALSE(install("com.example.two", 2'000'000));
    ASSERT_TRUE(installer.uninstall("com.example.one", Installer::Removal::Undoable));
    ASSERT_TRUE(install("com.example.two", 2'000'000));
    EXPECT_FALSE(installer.putBack("com.example.one"));
    EXPECT_EQ(device.leftovers(), 0);
}

TEST(Fault, ACommandThatIsMissingOrFailsLosesNothing) {
    const FaultyDevice device;
    for (const char* tool : {"cp", "zip", "ipainstaller"})
        for (const char* script : {"exit 127", "exit 1", "kill -9 $$"}) {
            SCOPED_TRACE(tool + std::string(": ") + script);
            device.putTool(tool, script);
            device.expectFailure();
            fs::remove(device.tools() / tool);
            fs::remove_all(device.staging() / "Fine App");
        }
    device.expectRecovery();
}

TEST(Fault, ASourceThatGoesMeanwhileIsAFailureLikeAnother) {
    const FaultyDevice device;
    for (const bool before : {true, false}) {
        const std::string remove = "rm -rf '" + device.installed(device.source).native() + "'\n";
        const std::string copy = "/usr/bin/cp \"$@\"\n";
        device.putTool("cp", before ? remove + copy : copy + remove + "rm -rf \"$3\"*");
        EXPECT_EQ(device.request(), device.failure);
        EXPECT_EQ(device.registry().identifiers(), std::vector<std::string>{});
        EXPECT_EQ(device.request(),
                  "dubrix: the application that is chosen is not installed: " + device.source);
        fs::remove(device.tools() / "cp");
        device.installSource("1");
    }
    device.expectRecovery();
}

TEST(Fault, WhatACommandLeavesIsTakenAsItIs) {
    const FaultyDevice device;
    const fs::path archive = device.staging() / "Fine App/Fine App.ipa";
    putFile(archive, "damaged");
    device.expectFailure();
    device.expectFailure(); // the archive is never made anew
    fs::remove(archive);
    device.putTool("cp", "/usr/bin/cp \"$@\"; rm \"$3\"X.app/large; exit 1");
    EXPECT_EQ(device.request(), device.success);
    EXPECT_FALSE(device.bundle(device.duplicate).contains("large"));
}

TEST(Fault, StrayRegistryEntriesAndUnusableSettingsAreLeftAlone) {
    const FaultyDevice device;
    const fs::path links = device.root() / "var/containers/Bundle/Registry";
    fs::create_symlink("loop", links / "loop");
    fs::create_symlink(std::string(4000, 'x'), links / "com.example.long");
    putFile(links / "com.example.folder/file", "text");
    device.expectUnharmed();
    const fs::path settings = device.settingsPath(), aside = device.folder() / "settings";
    fs::rename(settings, aside);
    const std::function<void()> damages[] = {
        [&] { putFile(settings, "<plist version=\"1.0\"><dict>"); },
        [&] { putFile(settings / "inside", "a folder"); },
        [&] { ::mkfifo(settings.c_str(), 0600); }};
    for (const auto& damage : damages) {
        SCOPED_TRACE(&damage - damages);
        damage();
        const auto before = device.snapshot();
        EXPECT_EQ(device.request(), "dubrix: no application is chosen in the settings: name one");
        EXPECT_EQ(device.run(device.storing("text")).status, 1);
        EXPECT_EQ(device.snapshot(), before);
        fs::remove_all(settings);
    }
    fs::rename(aside, settings);
    device.expectRecovery();
}

/// Also between a question and the wait for its answer.
TEST(Fault, ARequestToEndIsHeardAtAnyMoment) {
    const int status = inChild([] {
        int typed[2];
        const int stop = ::open("/dev/null", O_RDONLY);
        ::alarm(5);
        if (::pipe(typed) != 0 || ::dup2(typed[0], STDIN_FILENO) < 0)
            return false;
        return !Console({.isAnswered = true, .stop = stop}).answer();
    });
    EXPECT_EQ(status, 0);
}

TEST(OneAtATime, AsManyDuplicatesAsSuccesses) {
    const ProofDevice device;
    constexpr std::size_t rounds = 6, programs = 4;
    std::size_t successes = 0, refusals = 0;
    for (std::size_t round = 0; round < rounds; ++round)
        for (const Ended& ended : device.runTogether(std::vector(programs, device.duplicating()))) {
            successes += ended.said == device.success;
            refusals += ended.said == refusal;
        }
    EXPECT_EQ(successes + refusals, rounds * programs) << "nothing else is said";
    EXPECT_GE(successes, rounds) << "of each round at least one";
    EXPECT_EQ(device.registry().identifiers().size(), 1 + successes);
    for (const std::string& identifier : device.registry().identifiers())
        EXPECT_EQ(device.bundle(identifier).size(), device.bundle(device.source).size());
    EXPECT_EQ(device.leftovers(), 0);
    EXPECT_TRUE(fs::is_empty(device.staging()));
}

TEST(OneAtATime, WhatACommandLeavesBehindKeepsNoClaim) {
    const ProofDevice device;
    device.putTool("cp", "sleep 1000 & exec /bin/cp \"$@\"");
    std::vector<std::string> words = device.duplicating();
    words.insert(words.begin(), {"sh", "-c", "\"$@\"; \"$@\"", "-"});
    device.run(words);
    EXPECT_EQ(device.registry().identifiers().size(), 3U);
}

TEST(OneAtATime, ADeviceThatACommandNeverGivesBackIsRefused) {
    const ProofDevice device;
    std::vector<std::string> words = device.duplicating();
    words.insert(words.begin(), {"flock", device.root() / "var/containers/Bundle/Application"});
    EXPECT_EQ(device.run(words).said, refusal);
    EXPECT_EQ(device.registry().identifiers().size(), 1U);
    EXPECT_TRUE(fs::is_empty(device.staging())) << "nothing was staged";
    EXPECT_EQ(device.request(), device.success);
}

} // namespace dubrix
