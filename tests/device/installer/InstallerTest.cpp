#include "device/archive/Interruption.h"
#include "files/WholeFile.h"
#include "tests/device/DeviceFolder.h"

#include <csignal>

namespace dubrix {

namespace fs = std::filesystem;

namespace {

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

} // namespace

TEST(Installer, KeepsPermissionsAndLinksButNotWhatEndangers) {
    const DeviceFolder device;
    const mode_t mask = ::umask(0077);
    const auto result = device.installer().install(
        device.application("com.example.app", "1",
                           {file("closed/inside", 0640),
                            folder("closed/", 0555),
                            folder("closed/", 0550),
                            file("a", 0600),
                            file("b", 0775),
                            file("c", 06755),
                            file("d", 0666),
                            file("e", 0),
                            file("f", 0777, 0),
                            folder("g", 01777),
                            folder("", 0750),
                            {"CodeResources", "closed/inside", S_IFLNK | 0777}}));
    ::umask(mask);
    ASSERT_TRUE(result) << result.failure().text;
    const std::map<std::string, mode_t> expected{{"a", S_IFREG | 0600},
                                                 {"b", S_IFREG | 0775},
                                                 {"c", S_IFREG | 0755},
                                                 {"d", S_IFREG | 0664},
                                                 {"e", S_IFREG | 0644},
                                                 {"f", S_IFREG | 0644},
                                                 {"g", S_IFDIR | 0775},
                                                 {"closed/inside", S_IFREG | 0640},
                                                 {"closed", S_IFDIR | 0550},
                                                 {"Info.plist", S_IFREG | 0644},
                                                 {"", S_IFDIR | 0750},
                                                 {"..", S_IFDIR | 0755},
                                                 {"CodeResources", S_IFLNK | 0777}};
    for (const auto& [name, mode] : expected)
        EXPECT_EQ(modeOf(device.installed("com.example.app") / name), mode) << name;
    EXPECT_EQ(contentsOf(device.installed("com.example.app", "CodeResources")),
              "content of closed/inside");
}

TEST(Installer, KeepsTheBytesOfNamesAndIgnoresWhatLiesBesideTheBundle) {
    const DeviceFolder device;
    constexpr unsigned utf8Flag = 0x800;
    const std::vector<std::string> names{"中文",    "e\u0301",     "\u00e9",
                                         "lat\xe9", "back\\slash", "a b'c"};
    std::vector<ZipItem> items{{"__MACOSX/Payload/X.app/._Info.plist", "junk"},
                               {"SwiftSupport/Y.app/a", "a"},
                               {"Payload/._X.app", "junk"},
                               {"Payload/.DS_Store", "junk"},
                               {"./Payload//名.app/Info.plist", infoPlist("com.example.app")}};
    for (const std::string& name : names)
        items.push_back({"Payload/名.app/" + name, name, S_IFREG | 0644, 0, utf8Flag});
    const std::string stub = "#!/bin/sh\nunpacks what follows\n";
    const auto result = device.installer().install(device.archive("名.ipa", stub + zipOf(items)));
    ASSERT_TRUE(result) << result.failure().text;
    const fs::path bundle = device.installed("com.example.app");
    EXPECT_EQ(bundle.filename(), "名.app");
    for (const std::string& name : names)
        EXPECT_EQ(contentsOf(bundle / name), name);
    EXPECT_EQ(std::distance(fs::directory_iterator(bundle), {}),
              static_cast<long>(names.size() + 1));
    EXPECT_EQ(std::distance(fs::directory_iterator(bundle / ".."), {}), 1);
}

TEST(Installer, InstallsWhatTheZipCommandMakes) {
    const DeviceFolder device;
    const fs::path source = device.folder() / "source";
    std::string mixed;
    for (int number = 0; mixed.size() < 700'000; ++number)
        mixed += std::to_string(number * 7919) + std::string(number % 300, 'x');
    putFile(source / "Payload/中 文.app/Info.plist", infoPlist("com.example.app"));
    putFile(source / "Payload/中 文.app/lib/e\u0301", mixed);
    putFile(source / "Payload/中 文.app/empty", "");
    fs::create_symlink("lib/e\u0301", source / "Payload/中 文.app/link");
    fs::permissions(source / "Payload/中 文.app/lib", fs::perms(0555));
    for (const char* options : {"-qry", "-qry0", "-qryD"}) {
        for (const char* locale : {"C", "C.UTF-8"}) {
            const std::string command = std::string("cd '") + source.native() +
                                        "' && rm -f a.ipa && LC_ALL=" + locale + " zip " + options +
                                        " a.ipa *";
            ASSERT_EQ(std::system(command.c_str()), 0) << command;
            const auto result = device.installer().install(source / "a.ipa");
            ASSERT_TRUE(result) << command << ": " << result.failure().text;
            const fs::path bundle = device.installed("com.example.app");
            EXPECT_TRUE(contentsOf(bundle / "lib/e\u0301") == mixed) << command;
            EXPECT_EQ(fs::read_symlink(bundle / "link"), "lib/e\u0301");
            EXPECT_EQ(fs::file_size(bundle / "empty"), 0u);
        }
    }
    EXPECT_EQ(device.leftovers(), 0);
}

TEST(Installer, FilesEnoughForSeveralThreadsArriveWhole) {
    const DeviceFolder device;
    std::vector<ZipItem> items;
    std::map<std::string, std::string> expected;
    for (std::size_t number = 0; number < 120; ++number) {
        const std::string name = std::to_string(number % 7) + "/" + std::to_string(number);
        std::string content;
        while (content.size() < number * (number % 40 == 39 ? 20'000 : 300))
            content += name;
        items.push_back({name, content, S_IFREG | 0644, number % 3 == 0 ? 0U : 8U});
        expected.emplace(name, std::move(content));
    }
    ASSERT_TRUE(device.installer().install(device.application("com.example.app", "1", items)));
    for (const auto& [name, content] : expected)
        EXPECT_TRUE(contentsOf(device.installed("com.example.app", name)) == content) << name;
}

TEST(Installer, AnUpdateTakesTheOldBundlesPlaceWhole) {
    const DeviceFolder device;
    ASSERT_TRUE(device.installer().install(
        device.application("com.example.app", "1", {file("old", 0644), folder("c/", 0555)})));
    ASSERT_TRUE(device.installer().install(device.application("com.example.app3", "1")));
    const fs::path old = device.installed("com.example.app");
    ASSERT_TRUE(device.installer().install(device.application("com.example.app", "2")));
    EXPECT_EQ(device.versionOf("com.example.app"), "2");
    EXPECT_FALSE(fs::exists(device.installed("com.example.app", "old")));
    EXPECT_FALSE(fs::exists(old.parent_path()));
    EXPECT_EQ(device.versionOf("com.example.app3"), "1");
    EXPECT_EQ(device.leftovers(), 0);
}

TEST(Installer, RemovesOnlyWhatIsTheUsers) {
    const DeviceFolder device;
    ASSERT_TRUE(device.installer().install(device.application("com.example.app", "1")));
    ASSERT_TRUE(device.registry().enter("com.example.settings", "/Applications/Settings.app"));
    const auto before = device.snapshot();
    for (const std::string wrong : {"com.example.settings", "com.example", "..", ""}) {
        const auto result = device.installer().uninstall(wrong);
        ASSERT_FALSE(result) << wrong;
        EXPECT_EQ(result.failure().text.rfind(wrong + ": ", 0), 0u) << result.failure().text;
    }
    EXPECT_TRUE(device.snapshot() == before);
    ASSERT_TRUE(device.installer().uninstall("com.example.app"));
    EXPECT_FALSE(device.registry().isInstalled("com.example.app"));
    EXPECT_TRUE(device.registry().isInstalled("com.example.settings"));
    EXPECT_TRUE(fs::is_empty(device.root() / "var/containers/Bundle/Application"));
}

TEST(Installer, ARemovalIsUndoneUntilTheNextAndOverNothing) {
    const DeviceFolder device;
    Installer installer = device.installer();
    const std::string one = "com.example.one", two = "com.example.two";
    const auto install = [&](const std::string& identifier, const std::string& version) {
        return static_cast<bool>(installer.install(device.application(identifier, version)));
    };
    const auto remove = [&](const std::string& identifier) {
        auto removed = installer.uninstall(identifier, Installer::Removal::Undoable);
        return removed && removed->isKept;
    };
    const auto putBack = [&](const std::string& identifier) {
        return static_cast<bool>(installer.putBack(identifier));
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
    const std::string identifier = "com.example.one";
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

TEST(Installer, AnExportInstallsAgainAsItWas) {
    const DeviceFolder device;
    ASSERT_TRUE(
        device.installer().install(device.application("com.example.app", "1",
                                                      {file("b/中文", 0640),
                                                       file("a", 0755),
                                                       file("lat\xe9", 0600),
                                                       folder("b", 0555),
                                                       folder("empty/", 0700),
                                                       {"link", "b/中文", S_IFLNK | 0777},
                                                       {"large", std::string(600'000, 'l')}})));
    const auto contents = [&device] {
        std::map<std::string, std::string> below;
        const fs::path bundle = device.installed("com.example.app");
        for (auto& [path, content] : device.snapshot())
            if (path.starts_with(bundle.native()))
                below[path.substr(bundle.native().size())] = content;
        return below;
    };
    const auto before = contents();
    const fs::path first = device.archive("first.ipa", "an earlier file");
    ASSERT_TRUE(device.installer().exportTo("com.example.app", first));
    const auto result = device.installer().install(first);
    ASSERT_TRUE(result) << result.failure().text;
    EXPECT_TRUE(contents() == before);
    EXPECT_EQ(modeOf(first), mode_t{S_IFREG | 0644});

    ASSERT_EQ(::mkfifo(device.installed("com.example.app", "pipe").c_str(), 0600), 0);
    const std::string whole = contentsOf(first);
    EXPECT_FALSE(device.installer().exportTo("com.example.app", first));
    EXPECT_TRUE(contentsOf(first) == whole) << "a failure leaves the earlier file";
    EXPECT_FALSE(device.installer().exportTo("com.example.none", first));
    for (const auto& entry : fs::directory_iterator(device.folder().path()))
        EXPECT_NE(entry.path().filename().native()[0], '.') << entry.path();
}

TEST(Installer, AnExportHoldsOneVersionWholeOrLeavesNothing) {
    const DeviceFolder device;
    const std::string large(3'000'000, 'l');
    const auto archiveOf = [&](const std::string& version) {
        return device.application("com.example.app", version,
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
        return static_cast<bool>(installer.exportTo("com.example.app", saved));
    };
    // Files are written beside it, and the application is replaced under its hands.
    EXPECT_TRUE(exportWith([&] {
        EXPECT_TRUE(replaceWholeFile(other, "new"));
        EXPECT_TRUE(device.installer().install(second));
    }));
    const DeviceFolder another;
    ASSERT_TRUE(another.installer().install(saved));
    EXPECT_EQ(another.versionOf("com.example.app"), "2");
    EXPECT_TRUE(contentsOf(another.installed("com.example.app", "b/2")) == large);
    EXPECT_FALSE(exportWith([&] { EXPECT_TRUE(device.installer().uninstall("com.example.app")); }));

    ASSERT_TRUE(device.installer().install(second));
    fs::remove(saved);
    inChild([&] { return exportWith([] { ::kill(::getpid(), SIGKILL); }); });
    inChild([&] {
        Interruption::note();
        return exportWith([] { ::kill(::getpid(), SIGTERM); });
    });
    EXPECT_EQ(std::distance(fs::directory_iterator(saved.parent_path()), {}), 1);
}

TEST(Installer, AnExportStaysInTheFoldersOfApplications) {
    const DeviceFolder device;
    ASSERT_TRUE(device.installer().install(device.application("com.example.app", "1")));
    const fs::path bundles = device.root() / "var/containers/Bundle";
    putFile(device.root() / "export/Docs.app/secret", "secret");
    fs::create_directory_symlink(device.root() / "export", bundles / "Application/linked");
    const std::string places[] = {"/export/Docs.app", "../../../../export/Docs.app",
                                  "../Application/linked/Docs.app", "/etc", "../Application"};
    for (const std::string& place : places) {
        fs::remove(bundles / "Registry/com.example.nice");
        fs::create_symlink(place, bundles / "Registry/com.example.nice");
        const auto result =
            device.installer().exportTo("com.example.nice", device.folder() / "nice.ipa");
        ASSERT_FALSE(result) << place;
        EXPECT_EQ(result.failure().text,
                  "com.example.nice: is registered, but leads to no application's folder");
    }
    // The whole way there is a link.
    fs::rename(device.root() / "var/containers", device.root() / "export/containers");
    fs::create_directory_symlink(device.root() / "export/containers",
                                 device.root() / "var/containers");
    EXPECT_FALSE(device.installer().exportTo("com.example.app", device.folder() / "nice.ipa"));
    EXPECT_FALSE(fs::exists(device.folder() / "nice.ipa"));
}

TEST(Installer, WorksForAnOrdinaryUserToo) {
    const DeviceFolder device;
    const auto first =
        device.application("com.example.app", "1",
                           {file("closed/deep/inside", 0400), folder("closed/deep/", 0500),
                            folder("closed/", 0555), folder("", 0555)});
    const auto second = device.application("com.example.app", "2");
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
               installer.exportTo("com.example.app", device.folder() / "e.ipa") &&
               installer.install(device.folder() / "e.ipa") && installer.install(second) &&
               installer.install(first) && installer.uninstall("com.example.app") &&
               device.leftovers() == 0;
    });
    EXPECT_EQ(status, 0);
}

TEST(Installer, InstallersWaitForOneAnother) {
    const DeviceFolder device;
    const auto archive =
        device.application("com.example.app", "1", {file("a", 0644), file("b", 0644)});
    std::vector<pid_t> children;
    for (int number = 0; number < 4; ++number) {
        const pid_t child = ::fork();
        if (child == 0) {
            bool fine = true;
            for (int round = 0; round < 5; ++round)
                fine = fine && device.installer().install(archive);
            ::_exit(fine ? 0 : 1);
        }
        children.push_back(child);
    }
    for (const pid_t child : children) {
        int status = -1;
        ASSERT_EQ(::waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0) << "an installer took another's files away";
    }
    EXPECT_EQ(contentsOf(device.installed("com.example.app", "b")), "content of b");
    EXPECT_EQ(device.leftovers(), 0);
}

TEST(Installer, TheNextRunSweepsEveryKindOfLeftover) {
    const DeviceFolder device;
    ASSERT_TRUE(device.installer().install(device.application("com.example.app", "1")));
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
