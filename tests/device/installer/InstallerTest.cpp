#include "device/archive/Interruption.h"
#include "files/WholeFile.h"
#include "tests/device/DeviceFolder.h"

#include <csignal>

namespace dubrix {

namespace fs = std::filesystem;

namespace {

const std::string identifier = "com.example.app";

mode_t modeOf(const fs::path& path) {
    struct stat status{};
    return ::lstat(path.c_str(), &status) == 0 ? status.st_mode : 0;
}

ZipItem file(const std::string& name, mode_t permissions, unsigned host = 3) {
    return {name, "content of " + name, S_IFREG | permissions, 8, 0, host};
}

ZipItem folder(const std::string& name, mode_t permissions) {
    return {name, "", S_IFDIR | permissions};
}

ZipItem link(const std::string& name, const std::string& text) {
    return {name, text, S_IFLNK | 0777};
}

} // namespace

TEST(Installer, KeepsPermissionsAndLinksButNotWhatEndangers) {
    const DeviceFolder device;
    const mode_t mask = ::umask(0077);
    const auto result = device.installer().install(device.application(
        identifier, "1",
        {file("closed/inside", 0640), folder("closed/", 0555), folder("closed/", 0550),
         file("a", 0600), file("b", 0775), file("c", 06755), file("d", 0666), file("e", 0),
         file("f", 0777, 0), folder("g", 01777), folder("", 0750), folder("h/i", 0755),
         link("CodeResources", "closed/inside"), link("Current", "closed"),
         link("around", "Current/../a"), link("h/i/up", "../.."), link("dot", "./h//missing")}));
    ::umask(mask);
    ASSERT_TRUE(result) << result.failure().text;
    const std::map<std::string, mode_t> expected{
        {"a", S_IFREG | 0600},          {"b", S_IFREG | 0775},
        {"c", S_IFREG | 0755},          {"d", S_IFREG | 0664},
        {"e", S_IFREG | 0644},          {"f", S_IFREG | 0644},
        {"g", S_IFDIR | 0775},          {"closed/inside", S_IFREG | 0640},
        {"", S_IFDIR | 0750},           {"closed", S_IFDIR | 0550},
        {"Info.plist", S_IFREG | 0644}, {"..", S_IFDIR | 0755},
        {"h/i/up", S_IFLNK | 0777}};
    for (const auto& [name, mode] : expected)
        EXPECT_EQ(modeOf(device.installed(identifier) / name), mode) << name;
    EXPECT_EQ(contentsOf(device.installed(identifier, "CodeResources")),
              "content of closed/inside");
    EXPECT_EQ(contentsOf(device.installed(identifier, "around")), "content of a");
}

TEST(Installer, RemovesOnlyWhatIsTheUsers) {
    const DeviceFolder device;
    ASSERT_TRUE(device.installer().install(device.application(identifier, "1")));
    ASSERT_TRUE(device.registry().enter("com.example.settings", "/Applications/Settings.app"));
    const auto before = device.snapshot();
    for (const std::string wrong : {"com.example.settings", "com.example", "..", ""}) {
        const auto result = device.installer().uninstall(wrong);
        ASSERT_FALSE(result) << wrong;
        EXPECT_EQ(result.failure().text.rfind(wrong + ": ", 0), 0u) << result.failure().text;
    }
    EXPECT_TRUE(device.snapshot() == before);
    ASSERT_TRUE(device.installer().uninstall(identifier));
    EXPECT_FALSE(device.registry().isInstalled(identifier));
    EXPECT_TRUE(device.registry().isInstalled("com.example.settings"));
    EXPECT_TRUE(fs::is_empty(device.root() / "var/containers/Bundle/Application"));
}

TEST(Installer, ARemovalIsUndoneUntilTheNextAndOverNothing) {
    const DeviceFolder device;
    Installer installer = device.installer();
    const std::string one = "com.example.one", two = "com.example.two";
    const auto install = [&](const std::string& which, const std::string& version) {
        return static_cast<bool>(installer.install(device.application(which, version)));
    };
    const auto remove = [&](const std::string& which) {
        auto removed = installer.uninstall(which, Installer::Removal::Undoable);
        return removed && removed->isKept;
    };
    const auto putBack = [&](const std::string& which) {
        return static_cast<bool>(installer.putBack(which));
    };
    ASSERT_TRUE(install(one, "1") && install(two, "1"));
    const auto before = device.snapshot();
    ASSERT_TRUE(remove(one));
    EXPECT_EQ(device.versionOf(one), "not installed");
    ASSERT_TRUE(putBack(one));
    EXPECT_TRUE(device.snapshot() == before);
    EXPECT_FALSE(putBack(one)) << "once";

    ASSERT_TRUE(remove(one) && install(one, "2")); // which sweeps
    EXPECT_FALSE(putBack(one));
    EXPECT_EQ(device.versionOf(one), "2") << "what was installed meanwhile";

    ASSERT_TRUE(remove(one) && install(two, "2") && remove(two));
    EXPECT_FALSE(putBack(one)) << "another has been removed";
    EXPECT_EQ(device.leftovers(), 0);
    ASSERT_TRUE(installer.forgetRemoved());
    EXPECT_FALSE(putBack(two));
    ASSERT_TRUE(install(one, "1") && install(two, "1") && remove(one) && installer.uninstall(two));
    EXPECT_FALSE(putBack(one)) << "a removal for good is one, too";
    EXPECT_EQ(device.leftovers(), 0);
}

// What a hostile application leaves in its place.
TEST(Installer, NothingIsKeptOrTakenFromElsewhere) {
    const DeviceFolder device;
    Installer installer = device.installer();
    const fs::path place = device.root() / (Registry::removedPath.data() + 1);
    const fs::path letters = device.root() / "var/mobile/Documents";
    putFile(letters / "letter", "mine");
    ASSERT_TRUE(installer.install(device.application(identifier, "1")));
    fs::create_directory_symlink(letters, place);
    auto removed = installer.uninstall(identifier, Installer::Removal::Undoable);
    ASSERT_TRUE(removed && removed->isKept);
    EXPECT_TRUE(installer.putBack(identifier));
    for (const char* target : {"../../../mobile/Documents", "../Registry", "nowhere"}) {
        fs::create_directories(place);
        fs::create_symlink(target, place / "com.example.odd");
        EXPECT_FALSE(installer.putBack("com.example.odd")) << target;
        fs::remove_all(place);
    }
    EXPECT_EQ(contentsOf(letters / "letter"), "mine");
}

TEST(Installer, AnExportInstallsAgainAsItWasAndTellsHowFarItIs) {
    const DeviceFolder device;
    std::uint64_t last = 0;
    int steps = 0;
    Installer installer(device.root(), [&](std::uint64_t done, std::uint64_t total) {
        EXPECT_TRUE(done <= total && (done >= last || steps == 0));
        last = done == total ? 0 : done;
        ++steps;
    });
    const std::string large(600'000, 'l');
    ASSERT_TRUE(installer.install(device.application(identifier, "1",
                                                     {file("b/中文", 0640),
                                                      file("lat\xe9", 0600),
                                                      folder("b", 0555),
                                                      folder("empty/", 0700),
                                                      link("link", "b/中文"),
                                                      {"large", large},
                                                      {"packed", large, S_IFREG | 0644, 8}})));
    EXPECT_GT(steps, 5) << "on the way, too";
    EXPECT_EQ(last, 0U) << "all is done in the end";
    const auto before = contentsBelow(device.installed(identifier));
    const fs::path first = device.archive("first.ipa", "an earlier file");
    steps = 0;
    ASSERT_TRUE(installer.exportTo(identifier, first));
    EXPECT_GT(steps, 5);
    EXPECT_EQ(last, 0U);
    const auto result = installer.install(first);
    ASSERT_TRUE(result) << result.failure().text;
    EXPECT_TRUE(contentsBelow(device.installed(identifier)) == before);
    EXPECT_EQ(modeOf(first), mode_t{S_IFREG | 0644});

    ASSERT_EQ(::mkfifo(device.installed(identifier, "pipe").c_str(), 0600), 0);
    const std::string whole = contentsOf(first);
    EXPECT_FALSE(device.installer().exportTo(identifier, first));
    EXPECT_TRUE(contentsOf(first) == whole) << "a failure leaves the earlier file";
    EXPECT_FALSE(device.installer().exportTo("com.example.none", first));
    for (const auto& entry : fs::directory_iterator(device.folder().path()))
        EXPECT_NE(entry.path().filename().native()[0], '.') << entry.path();
}

TEST(Installer, AnExportHoldsOneVersionWholeOrLeavesNothing) {
    const DeviceFolder device;
    const std::string large(3'000'000, 'l');
    const auto archiveOf = [&](const std::string& version) {
        return device.application(identifier, version,
                                  {{"a/" + version, large}, {"b/" + version, large}});
    };
    const auto second = archiveOf("2");
    ASSERT_TRUE(device.installer().install(archiveOf("1")));
    const fs::path saved = device.folder() / "saved/a.ipa", other = device.folder() / "saved/other";
    putFile(other, "old");
    const auto exportWith = [&](const std::function<void()>& meanwhile) {
        bool done = false;
        const Installer installer(device.root(), [&](std::uint64_t, std::uint64_t) {
            if (!std::exchange(done, true))
                meanwhile();
        });
        return static_cast<bool>(installer.exportTo(identifier, saved));
    };
    // Files are written beside it, and the application is replaced under its hands.
    EXPECT_TRUE(exportWith([&] {
        EXPECT_TRUE(replaceWholeFile(other, "new"));
        EXPECT_TRUE(device.installer().install(second));
    }));
    const DeviceFolder another;
    ASSERT_TRUE(another.installer().install(saved));
    EXPECT_EQ(another.versionOf(identifier), "2");
    EXPECT_TRUE(contentsOf(another.installed(identifier, "b/2")) == large);
    EXPECT_FALSE(exportWith([&] { EXPECT_TRUE(device.installer().uninstall(identifier)); }));

    ASSERT_TRUE(device.installer().install(second));
    fs::remove(saved);
    inChild([&] { return exportWith([] { ::kill(::getpid(), SIGKILL); }); });
    inChild([&] {
        Interruption::note();
        return exportWith([] { ::kill(::getpid(), SIGTERM); });
    });
    EXPECT_EQ(std::distance(fs::directory_iterator(saved.parent_path()), {}), 1);

    // The whole way to the applications is a link.
    fs::create_directories(device.root() / "export");
    fs::rename(device.root() / "var/containers", device.root() / "export/containers");
    fs::create_directory_symlink(device.root() / "export/containers",
                                 device.root() / "var/containers");
    EXPECT_FALSE(device.installer().exportTo(identifier, saved));
    EXPECT_FALSE(fs::exists(saved));
}

TEST(Installer, WorksForAnOrdinaryUserToo) {
    const DeviceFolder device;
    const auto first =
        device.application(identifier, "1",
                           {file("closed/deep/inside", 0400), folder("closed/deep/", 0500),
                            folder("closed/", 0555), folder("", 0555)});
    const auto second = device.application(identifier, "2");
    constexpr uid_t nobody = 65534;
    if (::geteuid() == 0) {
        ASSERT_EQ(::chown(device.folder().path().c_str(), nobody, nobody), 0);
        ASSERT_EQ(::chown(device.root().c_str(), nobody, nobody), 0);
    }
    const int status = inChild([&] {
        if (::geteuid() == 0 && (::setgid(nobody) != 0 || ::setuid(nobody) != 0))
            return false;
        Installer installer = device.installer();
        return installer.install(first) &&
               installer.exportTo(identifier, device.folder() / "e.ipa") &&
               installer.install(device.folder() / "e.ipa") && installer.install(second) &&
               installer.install(first) && installer.uninstall(identifier) &&
               device.leftovers() == 0;
    });
    EXPECT_EQ(status, 0);
}

TEST(Installer, TheNextRunSweepsEveryKindOfLeftover) {
    const DeviceFolder device;
    ASSERT_TRUE(device.installer().install(device.application(identifier, "1")));
    const auto before = device.snapshot();
    const auto bundles = device.root() / "var/containers/Bundle";
    const std::string uuid = "01234567-89AB-4DEF-8123-456789ABCDEF";
    for (const std::string& name : {".installing-" + uuid, ".removing-" + uuid, uuid})
        putFile(bundles / "Application" / name / "X.app/closed/a", "a");
    std::filesystem::create_symlink("../Application/none", bundles / (".link-" + uuid));
    EXPECT_FALSE(device.installer().uninstall("com.example.none"));
    ASSERT_TRUE(device.installer().install(device.application("com.example.next", "1")));
    ASSERT_TRUE(device.installer().uninstall("com.example.next"));
    EXPECT_TRUE(device.snapshot() == before);
}

} // namespace dubrix
