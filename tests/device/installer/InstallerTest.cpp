#include "device/archive/Interruption.h"
#include "tests/device/DeviceFolder.h"

#include <csignal>

namespace dubrix {

namespace fs = std::filesystem;

namespace {

const std::string identifier = "com.example.app";

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
    const std::pair<ZipItem, mode_t> cases[] = {{file("closed/inside", 0640), 0640},
                                                {folder("closed/", 0555), 0550},
                                                {folder("closed/", 0550), 0550},
                                                {file("a", 0600), 0600},
                                                {file("b", 0775), 0775},
                                                {file("c", 06755), 0755},
                                                {file("d", 0666), 0664},
                                                {file("e", 0), 0644},
                                                {file("f", 0777, 0), 0644},
                                                {folder("g", 01777), 0775},
                                                {folder("", 0750), 0750},
                                                {folder("h/i", 0755), 0755},
                                                {link("h/i/up", "../.."), 0777},
                                                {link("CodeResources", "closed/inside"), 0777},
                                                {link("Current", "closed"), 0777},
                                                {link("around", "Current/../a"), 0777},
                                                {link("dot", "./h//missing"), 0777}};
    std::vector<ZipItem> items;
    for (const auto& [item, permissions] : cases)
        items.push_back(item);
    const DeviceFolder device;
    const mode_t mask = ::umask(0077);
    const auto result = device.installer().install(device.application(identifier, "1", items));
    ::umask(mask);
    ASSERT_TRUE(result) << result.failure().text;
    const auto modeOf = [&](const std::string& name) {
        struct stat status{};
        ::lstat((device.installed(identifier) / name).c_str(), &status);
        return status.st_mode;
    };
    for (const auto& [item, permissions] : cases)
        EXPECT_EQ(modeOf(item.name), (item.mode & S_IFMT) | permissions) << item.name;
    EXPECT_EQ(modeOf(".."), S_IFDIR | 0755U);
    EXPECT_EQ(contentsOf(device.installed(identifier, "CodeResources")),
              "content of closed/inside");
    EXPECT_EQ(contentsOf(device.installed(identifier, "around")), "content of a");
}

TEST(Installer, AbsurdTimesAreNotTaken) {
    const std::time_t now = std::time(nullptr);
    const auto stamp = [](std::uint64_t seconds, const std::string& flags = "\1") {
        return "UT" + bytesOf(5, 2) + flags + bytesOf(seconds, 4);
    };
    const std::string other = "ux" + bytesOf(3, 2) + "abc";
    constexpr std::uint32_t noonIn2010 = (30U << 9 | 1U << 5 | 15U) << 16 | 12U << 11;
    std::tm noon{};
    noon.tm_year = 110, noon.tm_mday = 15, noon.tm_hour = 12, noon.tm_isdst = -1;
    const std::time_t localNoon = std::mktime(&noon);
    const struct {
        std::uint32_t dateAndTime;
        std::string extra;
        std::optional<std::time_t> time;
    } cases[] = {
        {noonIn2010, "", localNoon},
        {noonIn2010 + (11U << 21 | 11U << 11 | 59U << 5), "",
         localNoon + (334 * 24 + 11) * 3600 + 59 * 60}, // 15 December, 23:59
        {noonIn2010, other + stamp(1'000'000'001), 1'000'000'001},
        {0, stamp(static_cast<std::uint64_t>(now) - 40'000), now - 40'000},
        {noonIn2010, stamp(1'000'000'001, std::string(1, '\2')), localNoon},
        {noonIn2010, stamp(5).substr(0, 7), localNoon},
        {noonIn2010, stamp(0xffffffff), std::nullopt}, // 1969
        {0, stamp(static_cast<std::uint64_t>(now) + 200'000), std::nullopt},
        {0, "", std::nullopt},
        {127U << 25 | 0x00210000, "", std::nullopt}, // 2107
        {(30U << 9 | 13U << 5 | 1U) << 16, "", std::nullopt},
    };
    const DeviceFolder device;
    std::vector<ZipItem> items;
    for (const auto& [dateAndTime, extra, time] : cases) {
        ZipItem& item = items.emplace_back();
        item.name = std::to_string(items.size());
        item.dateAndTime = dateAndTime;
        item.extra = extra;
    }
    ASSERT_TRUE(device.installer().install(device.application("com.example.app", "1", items)));
    EXPECT_EQ(fs::status(device.installed(identifier)).permissions(), fs::perms(0755));
    for (const ZipItem& item : items) {
        struct stat status{};
        ASSERT_EQ(::lstat(device.installed("com.example.app", item.name).c_str(), &status), 0);
        const std::time_t time = status.st_mtim.tv_sec;
        const auto& expected = cases[std::stoul(item.name) - 1].time;
        EXPECT_TRUE(expected ? time == *expected : std::abs(time - now) < 3600) << item.name;
    }
}

// What a hostile application leaves in its place.
TEST(Installer, NothingIsKeptOrTakenFromElsewhere) {
    const DeviceFolder device;
    Installer installer = device.installer();
    const fs::path place = device.root() / (Registry::removedPath.data() + 1);
    const fs::path letters = device.root() / "var/mobile/Documents";
    // What killed ones have left is swept.
    const fs::path bundles = device.root() / "var/containers/Bundle";
    const std::string uuid = "01234567-89AB-4DEF-8123-456789ABCDEF";
    for (const std::string& name : {".installing-" + uuid, ".removing-" + uuid, uuid})
        putFile(bundles / "Application" / name / "X.app/closed/a", "a");
    fs::create_symlink("../Application/none", bundles / (".link-" + uuid));
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
    EXPECT_EQ(device.leftovers(), 0);
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
    const fs::path saved = device.folder() / "saved/a.ipa";
    fs::create_directory(saved.parent_path());
    const auto exportWith = [&](const std::function<void()>& meanwhile) {
        int steps = 0;
        std::uint64_t last = 0;
        const Installer installer(device.root(), [&](std::uint64_t done, std::uint64_t total) {
            if (steps++ == 0)
                meanwhile();
            EXPECT_TRUE(done <= total && (done >= last || last == total));
            last = done;
        });
        const bool isDone = static_cast<bool>(installer.exportTo(identifier, saved));
        EXPECT_TRUE(!isDone || (steps > 5 && last > 2 * large.size())) << "told on the way";
        return isDone;
    };
    // The application is replaced under its hands.
    EXPECT_TRUE(exportWith([&] { EXPECT_TRUE(device.installer().install(second)); }));
    const DeviceFolder another;
    ASSERT_TRUE(another.installer().install(saved));
    EXPECT_EQ(another.versionOf(identifier), "2");
    EXPECT_TRUE(contentsOf(another.installed(identifier, "b/2")) == large);
    const std::string whole = contentsOf(saved);
    EXPECT_FALSE(exportWith([&] { EXPECT_TRUE(device.installer().uninstall(identifier)); }));
    ASSERT_TRUE(device.installer().install(second));
    ASSERT_EQ(::mkfifo(device.installed(identifier, "pipe").c_str(), 0600), 0);
    EXPECT_FALSE(exportWith([] {})) << "no file, folder or link";
    EXPECT_TRUE(contentsOf(saved) == whole) << "a failure leaves the earlier file";
    fs::remove(device.installed(identifier, "pipe"));
    fs::remove(saved);
    inChild([&] { return exportWith([] { ::kill(::getpid(), SIGKILL); }); });
    inChild([&] {
        Interruption::note();
        return exportWith([] { ::kill(::getpid(), SIGTERM); });
    });
    EXPECT_TRUE(fs::is_empty(saved.parent_path()));

    // The whole way to the applications is a link.
    fs::create_directories(device.root() / "export");
    fs::rename(device.root() / "var/containers", device.root() / "export/containers");
    fs::create_directory_symlink(device.root() / "export/containers",
                                 device.root() / "var/containers");
    EXPECT_FALSE(device.installer().exportTo(identifier, saved));
    EXPECT_FALSE(fs::exists(saved));
}

} // namespace dubrix
