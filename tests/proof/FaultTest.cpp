#include "formats/lists/PropertyList.h"
#include "tests/proof/PrivateMounts.h"
#include "tests/proof/ProofDevice.h"

#include <functional>

namespace dubrix {

namespace fs = std::filesystem;

namespace {

/// After a failure: the source is what it was, nothing else is installed, and once the fault is
/// gone a duplicate comes out whole and nothing is left over.
void expectUnharmed(const ProofDevice& device, const ProofDevice::Contents& source) {
    EXPECT_EQ(device.bundle(device.source), source);
    EXPECT_EQ(device.registry().identifiers(), std::vector<std::string>{device.source});
}

void expectRecovery(const ProofDevice& device, const ProofDevice::Contents& source) {
    EXPECT_EQ(device.request().output, device.success);
    ProofDevice::Contents expected = source;
    ProofDevice::Contents made = device.bundle(device.duplicate);
    for (const char* changed : {"Info.plist", "Icon.png", "Icon@2x.png", "art/Badge.png"}) {
        EXPECT_NE(made[changed], expected[changed]) << changed;
        made.erase(changed);
        expected.erase(changed);
    }
    EXPECT_EQ(made, expected);
    EXPECT_EQ(device.bundle(device.source), source);
    EXPECT_EQ(device.leftovers(), 0);
    EXPECT_TRUE(fs::is_empty(device.root() / "tmp"));
}

} // namespace

TEST(Fault, AFullDiskWhereItStagesLosesNothing) {
    if (!PrivateMounts::permitted())
        GTEST_SKIP() << "mounting is not permitted here";
    const ProofDevice device;
    const auto source = device.bundle(device.source);
    bool made = false;
    // From no room at all to just enough: the copy, the edit, the tint and the archive run out of
    // it.
    for (const std::size_t kilobytes : {4, 20, 200, 212, 224, 236, 300, 420, 440}) {
        SCOPED_TRACE(kilobytes);
        PrivateMounts mounts;
        ASSERT_TRUE(mounts.small(device.root() / "tmp", kilobytes * 1024));
        const Ended ended = device.request();
        made = ended.output == device.success;
        if (made) {
            EXPECT_GT(kilobytes, 400u) << "the bundle and its archive have no room";
            break;
        }
        EXPECT_EQ(ended.output, device.failure);
        expectUnharmed(device, source);
    }
    if (!made)
        expectRecovery(device, source);
}

TEST(Fault, AFullDiskWhereApplicationsLieLosesNothing) {
    if (!PrivateMounts::permitted())
        GTEST_SKIP() << "mounting is not permitted here";
    const ProofDevice device;
    const auto source = device.bundle(device.source);
    PrivateMounts mounts;
    const fs::path var = device.root() / "var", aside = device.folder() / "aside";
    fs::copy(var, aside, fs::copy_options::recursive | fs::copy_options::copy_symlinks);
    ASSERT_TRUE(mounts.small(var, 400 * 1024));
    fs::copy(aside, var,
             fs::copy_options::recursive | fs::copy_options::copy_symlinks |
                 fs::copy_options::overwrite_existing);
    EXPECT_EQ(device.request().output, device.failure);
    expectUnharmed(device, source);

    // Settings that no longer fit stay what they were.
    const std::string settings = contentsOf(device.settingsPath());
    device.run({"sh", "-c", "head -c 10000000 /dev/zero >'" + (var / "filler").native() + "'"});
    device.run(
        {DUPLICATE_ONCE, device.root().native(), "set", "customText", std::string(100'000, 't')});
    EXPECT_EQ(contentsOf(device.settingsPath()), settings);
    EXPECT_EQ(std::distance(fs::directory_iterator(device.settingsPath().parent_path()), {}), 1);
    mounts.undo();
    expectRecovery(device, source);
}

TEST(Fault, ReadOnlyFoldersLoseNothing) {
    if (!PrivateMounts::permitted())
        GTEST_SKIP() << "mounting is not permitted here";
    for (const char* folder : {"tmp", "var", "var/containers/Bundle", "."}) {
        SCOPED_TRACE(folder);
        const ProofDevice device;
        const auto source = device.bundle(device.source);
        const std::string settings = contentsOf(device.settingsPath());
        {
            PrivateMounts mounts;
            ASSERT_TRUE(mounts.readOnly(device.root() / folder));
            EXPECT_EQ(device.request().output, device.failure);
            expectUnharmed(device, source);
            device.run({DUPLICATE_ONCE, device.root().native(), "set", "customText", "text"});
        }
        if (std::string(folder) != "tmp" && std::string(folder) != "var/containers/Bundle") {
            EXPECT_EQ(contentsOf(device.settingsPath()), settings);
        }
        expectRecovery(device, source);
    }
}

TEST(Fault, ACommandThatIsMissingOrFailsLosesNothing) {
    const struct {
        const char* tool;
        const char* script;
    } faults[] = {
        {"cp", ""},
        {"zip", ""},
        {"ipainstaller", ""},
        {"cp", "exit 1"},
        {"zip", "exit 15"},
        {"ipainstaller", "exit 1"},
        {"ipainstaller", "kill -9 $$"},
    };
    for (const auto& [tool, script] : faults) {
        SCOPED_TRACE(std::string(tool) + ": " + script);
        const ProofDevice device;
        const auto source = device.bundle(device.source);
        std::string path;
        if (*script == '\0') {
            // Every command that the pipeline knows but one.
            for (const std::string& other : std::vector<std::string>{"cp", "zip", "ipainstaller"})
                if (other != tool)
                    fs::create_symlink(other == "ipainstaller" ? PROGRAMS "/ipainstaller"
                                                               : "/usr/bin/" + other,
                                       device.tools() / other);
            path = device.tools();
        } else {
            device.putTool(tool, script);
        }
        EXPECT_EQ(device.run({DUPLICATE_ONCE, device.root().native(), "request"}, path).output,
                  device.failure);
        expectUnharmed(device, source);
        fs::remove_all(device.tools());
        expectRecovery(device, source);
    }
}

TEST(Fault, ASourceThatGoesMeanwhileIsAFailureLikeAnother) {
    const ProofDevice device;
    const auto source = device.bundle(device.source);
    for (const bool before : {true, false}) {
        const std::string remove = "rm -rf '" + device.installed(device.source).native() + "'\n";
        const std::string copy = "/usr/bin/cp \"$@\"\n";
        device.putTool("cp", before ? remove + copy : copy + remove + "rm -rf \"$3\"*");
        EXPECT_EQ(device.request().output, device.failure);
        EXPECT_EQ(device.registry().identifiers(), std::vector<std::string>{});
        EXPECT_EQ(device.request().output, "Please select an app from the list");
        fs::remove(device.tools() / "cp");
        device.installSource("1");
    }
    expectRecovery(device, source);
}

TEST(Fault, WhatACommandLeavesIsTakenAsItIs) {
    const ProofDevice device;
    const auto source = device.bundle(device.source);
    const fs::path archive = device.root() / "tmp/Fine App/Fine App.ipa";
    putFile(archive, "damaged");
    EXPECT_EQ(device.request().output, device.failure);
    EXPECT_EQ(device.request().output, device.failure) << "the archive is never made anew";
    expectUnharmed(device, source);
    fs::remove(archive);
    device.putTool("cp", "/usr/bin/cp \"$@\"; rm \"$3\"X.app/large; exit 1");
    EXPECT_EQ(device.request().output, device.success);
    EXPECT_FALSE(device.bundle(device.duplicate).contains("large"));
    EXPECT_EQ(device.bundle(device.source), source);
}

TEST(Fault, ARegistryWithStrayEntriesIsReadAllTheSame) {
    const ProofDevice device;
    const auto source = device.bundle(device.source);
    const fs::path links = device.root() / "var/containers/Bundle/Registry";
    fs::create_symlink("../Application/gone/X.app", links / device.duplicate);
    fs::create_symlink("loop", links / "loop");
    fs::create_symlink(std::string(4000, 'x'), links / "com.example.long");
    fs::create_directories(links / "com.example.folder");
    putFile(links / "com.example.file", "text");
    expectUnharmed(device, source);
    EXPECT_EQ(device.request().output, device.success);
    EXPECT_EQ(device.bundle(device.source), source);
    EXPECT_EQ(device.registry().identifiers(),
              (std::vector<std::string>{device.source, device.duplicate}));
    EXPECT_EQ(contentsOf(links / "com.example.file"), "text");
}

TEST(Fault, UnusableSettingsStayAndSayNoSource) {
    const std::function<void(const fs::path&)> damages[] = {
        [](const fs::path& file) { putFile(file, "<plist version=\"1.0\"><dict>"); },
        [](const fs::path& file) { putFile(file, ""); },
        [](const fs::path& file) { putFile(file, PropertyList::array().xml()); },
        [](const fs::path& file) { putFile(file / "inside", "a folder"); },
        [](const fs::path& file) { ::mkfifo(file.c_str(), 0600); },
    };
    int number = 0;
    for (const auto& damage : damages) {
        SCOPED_TRACE(number++);
        const ProofDevice device;
        fs::remove(device.settingsPath());
        damage(device.settingsPath());
        const auto before = device.snapshot();
        EXPECT_EQ(device.request().output, "Please select an app from the list");
        EXPECT_EQ(device.run({DUPLICATE_ONCE, device.root().native(), "set", "customText", "text"})
                      .status,
                  0);
        EXPECT_EQ(device.snapshot(), before);
    }
}

TEST(Fault, WhatCouldBePutBackMakesWay) {
    if (!PrivateMounts::permitted())
        GTEST_SKIP() << "mounting is not permitted here";
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

} // namespace dubrix
