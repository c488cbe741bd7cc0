#include "device/archive/ZipFormat.h"
#include "tests/device/DeviceFolder.h"

namespace dubrix {

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
    for (const ZipItem& item : items) {
        struct stat status{};
        ASSERT_EQ(::lstat(device.installed("com.example.app", item.name).c_str(), &status), 0);
        const std::time_t time = status.st_mtim.tv_sec;
        const auto& expected = cases[std::stoul(item.name) - 1].time;
        EXPECT_TRUE(expected ? time == *expected : std::abs(time - now) < 3600) << item.name;
    }
}

TEST(Archive, NamesKeepTheirBytes) {
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
    const std::filesystem::path bundle = device.installed("com.example.app");
    EXPECT_EQ(bundle.filename(), "名.app");
    for (const std::string& name : names)
        EXPECT_EQ(contentsOf(bundle / name), name.starts_with("link") ? "plain" : name);
    EXPECT_EQ(contentsBelow(bundle).size(), names.size() + 1) << "nothing from beside it";
}

} // namespace dubrix
