#include "device/archive/ZipDirectory.h"
#include "device/archive/ZipFormat.h"
#include "tests/device/DeviceFolder.h"

#include <clocale>
#include <fcntl.h>

namespace dubrix {

namespace fs = std::filesystem;

namespace {

/// Everything in `folder`, and itself, with the second of its last change.
std::map<std::string, std::time_t> timesIn(const fs::path& folder) {
    std::map<std::string, std::time_t> times;
    const auto note = [&](const fs::path& path) {
        struct stat status{};
        ::lstat(path.c_str(), &status);
        times[path.lexically_relative(folder).native()] = status.st_mtim.tv_sec;
    };
    note(folder);
    for (const auto& entry : fs::recursive_directory_iterator(folder))
        note(entry.path());
    return times;
}

/// Gives everything in `folder` a time of its own, to even seconds as all archives can hold them.
void spreadTimes(const fs::path& folder, std::time_t first) {
    for (const auto& [name, ignored] : timesIn(folder)) {
        const timespec times[] = {{first, 0}, {first, 500'000'000}};
        ::utimensat(AT_FDCWD, (folder / name).c_str(), times, AT_SYMLINK_NOFOLLOW);
        first += 86'402;
    }
}

/// The flags of each name in the central directory of an archive.
std::map<std::string, unsigned> flagsIn(const std::string& archive) {
    std::map<std::string, unsigned> flags;
    for (auto at = archive.find("PK\1\2"); at != archive.npos; at = archive.find("PK\1\2", at + 1))
        flags[archive.substr(at + 46, littleEndian(&archive[at + 28], 2))] =
            static_cast<unsigned>(littleEndian(&archive[at + 8], 2));
    return flags;
}

} // namespace

TEST(ArchiveNotes, TimesAreKeptFromTheZipCommandToUnzip) {
    const DeviceFolder device;
    const fs::path source = device.folder() / "source";
    const fs::path bundle = source / "Payload/X.app";
    putFile(bundle / "Info.plist", infoPlist("com.example.app"));
    putFile(bundle / "closed/deep/file", "content");
    fs::create_symlink("closed/deep/file", bundle / "link");
    fs::permissions(bundle / "closed", fs::perms(0555));
    const std::string in = "cd '" + source.native() + "' && ";
    for (const std::string options : {"-qry", "-qryX"}) { // with and without Unix time stamps
        spreadTimes(bundle, options == "-qry" ? 1'100'000'000 : 1'300'000'000);
        const auto times = timesIn(bundle);
        ASSERT_EQ(std::system((in + "zip " + options + " a.ipa Payload").c_str()), 0);
        ASSERT_TRUE(device.installer().install(source / "a.ipa"));
        EXPECT_EQ(timesIn(device.installed("com.example.app")), times) << options;
        ASSERT_TRUE(device.installer().exportTo("com.example.app", source / "a.ipa"));
        ASSERT_TRUE(device.installer().install(source / "a.ipa"));
        EXPECT_EQ(timesIn(device.installed("com.example.app")), times) << options;
        ASSERT_EQ(std::system((in + "unzip -q a.ipa -d ./" + options).c_str()), 0);
        auto unpacked = timesIn(source / options / "Payload/X.app");
        unpacked["link"] = times.at("link"); // unzip makes links anew
        EXPECT_EQ(unpacked, times) << options;
        fs::remove(source / "a.ipa");
    }
}

TEST(ArchiveNotes, AbsurdTimesAreNotTaken) {
    const std::time_t now = std::time(nullptr);
    const auto stamp = [](std::uint64_t seconds, const std::string& flags = "\1") {
        return "UT" + bytesOf(5, 2) + flags + bytesOf(seconds, 4);
    };
    const std::string other = "ux" + bytesOf(3, 2) + "abc";
    constexpr std::uint32_t noonIn2010 = (30U << 9 | 6U << 5 | 15U) << 16 | 12U << 11;
    std::tm noon{};
    noon.tm_year = 110, noon.tm_mon = 5, noon.tm_mday = 15, noon.tm_hour = 12, noon.tm_isdst = -1;
    const std::time_t localNoon = std::mktime(&noon);
    const struct {
        std::uint32_t dateAndTime;
        std::string extra;
        std::optional<std::time_t> time;
    } cases[] = {
        {noonIn2010, "", localNoon},
        {noonIn2010, stamp(1'000'000'001), 1'000'000'001},
        {noonIn2010, other + stamp(1'000'000'001), 1'000'000'001},
        {0, stamp(1'000'000'001), 1'000'000'001},
        {noonIn2010, stamp(1'000'000'001, std::string(1, '\2')), localNoon},
        {noonIn2010, stamp(5).substr(0, 7), localNoon},
        {noonIn2010, stamp(0xffffffff), std::nullopt}, // 1969
        {0, stamp(static_cast<std::uint64_t>(now) + 200'000), std::nullopt},
        {0, "", std::nullopt},
        {0xffffffff, "", std::nullopt},
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
    const auto times = timesIn(device.installed("com.example.app"));
    for (const auto& item : items) {
        const auto& expected = cases[std::stoul(item.name) - 1].time;
        if (expected)
            EXPECT_EQ(times.at(item.name), *expected) << item.name;
        else
            EXPECT_NEAR(static_cast<double>(times.at(item.name)), static_cast<double>(now), 3600)
                << item.name;
    }
}

TEST(ArchiveNotes, ExportsMarkTheNamesThatAreUtf8) {
    const std::map<std::string, bool> names = {
        {"Payload/X.app/plain", false},  {"Payload/X.app/grüß", true},
        {"Payload/X.app/e\u0301", true}, {"Payload/X.app/🤖", true},
        {"Payload/X.app/名/中", true},   {"Payload/X.app/link é", true},
        {"Payload/X.app/lat\xe9", false}};
    std::vector<ZipItem> items;
    for (const auto& [name, isMarked] : names)
        items.push_back({name.substr(14), "plain",
                         mode_t(name.ends_with("link é") ? S_IFLNK | 0777 : S_IFREG | 0644)});
    const DeviceFolder device;
    ASSERT_TRUE(device.installer().install(device.application("com.example.app", "1", items)));
    for (const char* const locale : {"C", "C.UTF-8"}) {
        ASSERT_NE(std::setlocale(LC_ALL, locale), nullptr);
        const fs::path file = device.folder() / "exported.ipa";
        ASSERT_TRUE(device.installer().exportTo("com.example.app", file));
        auto flags = flagsIn(contentsOf(file));
        for (const auto& [name, isMarked] : names) {
            ASSERT_TRUE(flags.contains(name)) << name;
            EXPECT_EQ((flags[name] & utf8Flag) != 0, isMarked) << name << " in " << locale;
        }
        EXPECT_NE(flags["Payload/X.app/名/"] & utf8Flag, 0U);
    }
    std::setlocale(LC_ALL, "C");
}

} // namespace dubrix
