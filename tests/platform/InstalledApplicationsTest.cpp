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
        for (int time = 0; time < 2; ++time) {
            const BundleInfo* const read = cache.read(folder / "It.app");
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
        EXPECT_EQ(cache.read(folder / "It.app")->displayName, text);
    }
}

namespace {

/// A device whose applications change, and what must be said of them: what one who has never
/// looked before says.
class ChangingDevice {
public:
    ChangingDevice() {
        std::filesystem::create_directories(links());
        for (int number = 0; number < 520; ++number) // enough for several threads
            put("com.example.app" + std::to_string(number), "One");
    }
    std::filesystem::path links() const { return folder_ / "var/containers/Bundle/Registry"; }
    std::filesystem::path bundle(const std::string& identifier) const {
        return folder_ / "var/containers/Bundle/Application" / identifier / "X.app";
    }
    void put(const std::string& identifier, const std::string& name) const {
        putFile(bundle(identifier) / "Info.plist", "{CFBundleDisplayName = " + name + ";}");
        ASSERT_TRUE(registry().enter(identifier, "/var/containers/Bundle/Application/" +
                                                     identifier + "/X.app"));
    }
    Registry registry() const { return Registry(folder_.path()); }

    void expectSeenBy(RegistryLinks& links, RegisteredBundles& bundles) const {
        RegisteredBundles unprejudiced(registry());
        const auto& seen = bundles.current();
        const auto& expected = unprejudiced.current();
        ASSERT_EQ(seen.size(), expected.size());
        for (std::size_t index = 0; index < seen.size(); ++index) {
            const std::string& identifier = expected[index].identifier;
            EXPECT_EQ(seen[index].identifier, identifier);
            EXPECT_EQ(seen[index].path, expected[index].path) << identifier;
            EXPECT_EQ(nameOf(seen[index]), nameOf(expected[index])) << identifier;
        }
        for (const char* identifier : {"com.example.app1", "com.example.app2", "com.example.new"}) {
            EXPECT_EQ(links.pathOf(identifier), registry().pathOf(identifier)) << identifier;
            EXPECT_EQ(links.isInstalled(identifier), registry().isInstalled(identifier));
        }
    }

private:
    static std::string nameOf(const RegisteredBundles::Bundle& bundle) {
        return bundle.info ? bundle.info->displayName : "nothing";
    }
    TemporaryFolder folder_;
};

} // namespace

TEST(InstalledApplicationsTest, AreSeenAsTheyAre) {
    const ChangingDevice device;
    const Registry registry = device.registry();
    const auto bundles = device.bundle("com.example.app2").parent_path().parent_path();
    const std::function<void()> changes[] = {
        [] {},
        [&] { device.put("com.example.new", "New"); },
        [&] { putFile(device.bundle("com.example.app2") / "Info.plist", "{CFBundleName = Two;}"); },
        [&] {
            ASSERT_TRUE(registry.enter(
                "com.example.app1", "/var/containers/Bundle/Application/com.example.app2/X.app"));
        },
        [&] { ASSERT_TRUE(registry.strike("com.example.new")); },
        [&] { std::filesystem::remove_all(bundles / "com.example.app3"); },
        [&] { std::filesystem::rename(bundles / "com.example.app2/X.app", bundles / "moved"); },
        [&] { device.put("com.example.app2", "Three"); },
        [&] { std::filesystem::remove_all(device.links()); },
        [&] {
            std::filesystem::create_directory(device.links());
            device.put("com.example.new", "Another");
        },
    };
    // What is kept at once, and what is kept only when no change can hide any more.
    RegistryLinks links(registry, FileStamp::Time(0));
    RegisteredBundles registered(registry, FileStamp::Time(0));
    RegistryLinks carefulLinks(registry);
    RegisteredBundles carefulBundles(registry);
    auto time = std::filesystem::last_write_time(device.links());
    for (const auto& change : changes) {
        SCOPED_TRACE(&change - changes);
        change();
        std::error_code none; // the folder's clock goes on
        std::filesystem::last_write_time(device.links(), time += std::chrono::seconds(1), none);
        device.expectSeenBy(links, registered);
        device.expectSeenBy(carefulLinks, carefulBundles);
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
