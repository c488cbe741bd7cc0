#include "platform/linux/LinuxApplicationIcons.h"
#include "platform/linux/LinuxApplicationList.h"
#include "tests/formats/CrushedPngFile.h"
#include "tests/support/TemporaryFolder.h"

#include <functional>

namespace dubrix {

TEST(BundleInfoCacheTest, SeesEveryChange) {
    TemporaryFolder folder;
    BundleInfoCache cache(std::chrono::nanoseconds(0)); // keeps what was written a moment ago
    const auto info = folder / "It.app/Info.plist";
    const auto put = [&info](const std::string& name) {
        putFile(info, "{CFBundleDisplayName = " + name + ";}");
    };
    const auto replace = [&](const std::string& name) {
        putFile(folder / "next", "{CFBundleDisplayName = " + name + ";}");
        std::filesystem::rename(folder / "next", info);
    };
    const struct {
        const char* what;
        std::function<void()> change;
        const char* name;
    } cases[] = {
        {"first", [&] { put("One"); }, "One"},
        {"unchanged", [] {}, "One"},
        {"other size", [&] { put("Three"); }, "Three"},
        {"another file of the same size and time",
         [&] {
             const auto time = std::filesystem::last_write_time(info);
             replace("Seven");
             std::filesystem::last_write_time(info, time);
         },
         "Seven"},
        {"no property list", [&] { putFile(info, "<plist"); }, nullptr},
        {"removed", [&] { std::filesystem::remove(info); }, nullptr},
        {"back", [&] { put("Eight"); }, "Eight"},
    };
    for (const auto& [what, change, name] : cases) {
        change();
        BundleInfoCache::Round round(cache);
        for (int time = 0; time < 2; ++time) {
            const BundleInfo* const read = round.read(folder / "It.app");
            EXPECT_EQ(read ? read->displayName : "nothing", name ? name : "nothing") << what;
        }
    }
}

TEST(BundleInfoCacheTest, SeesChangesThatLeaveNoTrace) {
    TemporaryFolder folder;
    BundleInfoCache cache;
    // Same file, same size, within one tick of its clock.
    for (char name = 'A'; name <= 'Z'; ++name) {
        const std::string text(1, name);
        putFile(folder / "It.app/Info.plist", "{CFBundleDisplayName = " + text + ";}");
        BundleInfoCache::Round round(cache);
        EXPECT_EQ(round.read(folder / "It.app")->displayName, text);
    }
}

TEST(LinuxApplicationIconsTest, GivesTheFirstIconThatCanBeDrawn) {
    TemporaryFolder folder;
    const LinuxApplicationIcons icons(folder.path());
    const auto bundle = folder / "var/It.app";
    EXPECT_FALSE(icons.iconOfBundle("/var/It.app", 58));
    putFile(bundle / "Info.plist", "{CFBundleIconFiles = (A, B);}");
    EXPECT_FALSE(icons.iconOfBundle("/var/It.app", 58));
    CrushedPngFile crushed{.width = 3, .height = 2};
    const std::vector<Rgba> pixels(6, Rgba{10, 20, 30, 255});
    putFile(bundle / "B.png", crushed.bytes(pixels));
    const auto whole = CrushedPngFile{.width = 60, .height = 60}.bytes(samplePixels(3600));
    putFile(bundle / "A.png", whole.substr(0, whole.size() / 2)); // suits better, but damaged
    const auto picture = icons.iconOfBundle("/var/It.app", 58);
    ASSERT_TRUE(picture);
    EXPECT_EQ(picture->width, 3U);
    EXPECT_EQ(picture->height, 2U);
    for (std::size_t sample = 0; sample < 4; ++sample)
        EXPECT_EQ(picture->bytes[20 + sample], pixels[5][sample]) << sample;
    putFile(bundle / "A.png", whole);
    EXPECT_EQ(icons.iconOfBundle("/var/It.app", 58)->width, 60U);
}

} // namespace dubrix
