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

/// Of which some are large and many small: several threads unpack them.
TEST(Archive, WhatZipMakesArrivesWholeAndGoesOnToUnzip) {
    const DeviceFolder device;
    const fs::path source = device.folder() / "source";
    const fs::path bundle = source / "Payload/中 文.app";
    putFile(bundle / "Info.plist", infoPlist("com.example.app"));
    putFile(bundle / "empty", "");
    std::string mixed;
    for (int number = 0; mixed.size() < 3'000'000; ++number) {
        mixed += std::to_string(number * 7919) + std::string(number % 300, 'x');
        if (number % 100 == 0)
            putFile(bundle / "lib" / std::to_string(number), mixed.substr(0, 2000));
    }
    putFile(bundle / "lib/deep/e\u0301", mixed);
    fs::create_symlink("lib/deep/e\u0301", bundle / "link");
    fs::permissions(bundle / "lib/deep", fs::perms(0555));
    const Contents contents = contentsBelow(bundle);
    const std::string in = "cd '" + source.native() + "' && ";
    std::time_t first = 1'000'000'000;
    std::uint64_t last = 0;
    int steps = 0;
    Installer installer(device.root(), [&](std::uint64_t done, std::uint64_t total) {
        EXPECT_TRUE(done <= total && (done >= last || steps == 0));
        last = done == total ? 0 : done;
        ++steps;
    });
    for (const std::string options : {"-qry", "-qry0", "-qryX", "-qryD"}) {
        SCOPED_TRACE(options);
        spreadTimes(bundle, first += 100'000'000);
        const auto times = timesIn(bundle);
        const std::string locale = options == "-qry0" ? "C.UTF-8" : "C";
        ASSERT_EQ(
            std::system((in + "LC_ALL=" + locale + " zip " + options + " a.ipa Payload").c_str()),
            0);
        for (const bool isOurs : {false, true}) {
            steps = 0;
            const auto result = installer.install(source / "a.ipa");
            ASSERT_TRUE(result) << result.failure().text;
            EXPECT_GT(steps, 5) << "on the way, too";
            EXPECT_EQ(last, 0U) << "all is done in the end";
            const fs::path installed = device.installed("com.example.app");
            // -D leaves folders out, and with them their times and permissions.
            if (options != "-qryD") {
                EXPECT_EQ(timesIn(installed), times) << isOurs;
                EXPECT_TRUE(contentsBelow(installed) == contents) << isOurs;
            }
            EXPECT_TRUE(contentsOf(installed / "link") == mixed) << isOurs;
            steps = 0;
            ASSERT_TRUE(installer.exportTo("com.example.app", source / "a.ipa"));
            EXPECT_GT(steps, 5);
            EXPECT_EQ(last, 0U);
        }
        ASSERT_EQ(std::system((in + "unzip -q a.ipa -d ./" + options).c_str()), 0);
        auto unpacked = timesIn(source / options / "Payload/中 文.app");
        unpacked["link"] = times.at("link"); // unzip makes links anew
        if (options != "-qryD") {
            EXPECT_EQ(unpacked, times);
        }
        fs::remove(source / "a.ipa");
    }
    EXPECT_EQ(device.leftovers(), 0);
}

TEST(Archive, AbsurdTimesAreNotTaken) {
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
        {noonIn2010, other + stamp(1'000'000'001), 1'000'000'001},
        {0, stamp(1'000'000'001), 1'000'000'001},
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
    const auto times = timesIn(device.installed("com.example.app"));
    for (const ZipItem& item : items) {
        const std::time_t time = times.at(item.name);
        const auto& expected = cases[std::stoul(item.name) - 1].time;
        EXPECT_TRUE(expected ? time == *expected : std::abs(time - now) < 3600) << item.name;
    }
}

TEST(Archive, NamesKeepTheirBytesAndExportsMarkThoseThatAreUtf8) {
    const DeviceFolder device;
    const std::vector<std::string> names{"plain",   "back\\slash", "a b'c", "lat\xe9",
                                         "e\u0301", "\u00e9",      "🤖",    "link é"};
    std::vector<ZipItem> items{{"__MACOSX/Payload/X.app/._Info.plist", "junk"},
                               {"SwiftSupport/Y.app/a", "a"},
                               {"Payload/._X.app", "junk"},
                               {"Payload/.DS_Store", "junk"},
                               {"./Payload//名.app/Info.plist", infoPlist("com.example.app")}};
    for (const std::string& name : names)
        items.push_back({"Payload/名.app/" + name, name.starts_with("link") ? "plain" : name,
                         mode_t(name.starts_with("link") ? S_IFLNK | 0777 : S_IFREG | 0644), 0,
                         utf8Flag});
    const std::string stub = "#!/bin/sh\nunpacks what follows\n";
    const auto result = device.installer().install(device.archive("名.ipa", stub + zipOf(items)));
    ASSERT_TRUE(result) << result.failure().text;
    const fs::path bundle = device.installed("com.example.app");
    EXPECT_EQ(bundle.filename(), "名.app");
    for (const std::string& name : names)
        EXPECT_EQ(contentsOf(bundle / name), name.starts_with("link") ? "plain" : name);
    EXPECT_EQ(contentsBelow(bundle).size(), names.size() + 1) << "nothing from beside it";
    for (const char* const locale : {"C", "C.UTF-8"}) {
        ASSERT_NE(std::setlocale(LC_ALL, locale), nullptr);
        const fs::path file = device.folder() / "exported.ipa";
        ASSERT_TRUE(device.installer().exportTo("com.example.app", file));
        auto flags = flagsIn(contentsOf(file));
        for (const std::string& name : names) {
            const std::string path = "Payload/名.app/" + name;
            ASSERT_TRUE(flags.contains(path)) << name;
            EXPECT_EQ((flags[path] & utf8Flag) != 0, name != "lat\xe9") << name << " in " << locale;
        }
    }
    std::setlocale(LC_ALL, "C");
}

} // namespace dubrix
