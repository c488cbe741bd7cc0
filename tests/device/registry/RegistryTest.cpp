#include "device/registry/InstalledApplications.h"
#include "formats/lists/PropertyList.h"
#include "tests/device/DeviceFolder.h"

#include <thread>

namespace dubrix {

namespace fs = std::filesystem;

namespace {
const std::string place = "/var/containers/Bundle/Application/1/X.app";
} // namespace

TEST(Registry, ALinkThatLeadsToAFolderIsAnInstalledApplication) {
    const DeviceFolder device;
    const Registry registry = device.registry();
    const fs::path links = device.root() / "var/containers/Bundle/Registry";
    fs::create_directories(links / "com.example.folder");
    fs::create_directories(registry.hostPath(place));
    fs::create_directory_symlink(registry.hostPath(place), registry.hostPath(place + "/link.app"));
    putFile(registry.hostPath("/file"), "");
    // What lies elsewhere, or is reached through a link, is no installed application.
    const fs::path applications = registry.hostPath(Registry::applicationPath);
    fs::create_directories(device.root() / "export/Docs.app");
    fs::create_directories(applications / ".installing-1/X.app");
    fs::create_directories(applications / "1/X.app/Inner.app");
    fs::create_directories(applications / "1/plain");
    fs::create_directory_symlink(device.root() / "export", applications / "linked");
    const struct {
        std::string identifier;
        std::string text;
        std::optional<std::string> path;
    } cases[] = {
        {"com.example.app", "../Application/1/X.app", place},
        {"com.example.app3", "../Application/1/X.app/", place},
        {"com.example.absolute", place, place},
        {"com.example.system", "../../../../Applications/Settings.app",
         "/Applications/Settings.app"},
        {"com.example.gone", "../Application/2/X.app", std::nullopt},
        {"com.example.file", "/file", std::nullopt},
        {"com.example.link", "../Application/1/X.app/link.app", std::nullopt},
        {"com.example.export", "/export/Docs.app", std::nullopt},
        {"com.example.linked", "../Application/linked/Docs.app", std::nullopt},
        {"com.example.climbs", "../Application/../../../../export/Docs.app", std::nullopt},
        {"com.example.hidden", "../Application/.installing-1/X.app", std::nullopt},
        {"com.example.inner", "../Application/1/X.app/Inner.app", std::nullopt},
        {"com.example.plain", "../Application/1/plain", std::nullopt},
        {"-" + std::string(254, 'x'), "../Application/1/X.app", place},
        {"com.example.\u202edirection", "../Application/1/X.app", place},
    };
    std::vector<std::string> installed;
    for (const auto& [identifier, text, path] : cases) {
        fs::create_symlink(text, links / identifier);
        EXPECT_EQ(registry.pathOf(identifier), path) << identifier;
        if (path)
            installed.push_back(identifier);
    }
    std::sort(installed.begin(), installed.end());
    EXPECT_EQ(registry.identifiers(), installed);
    for (const std::string& wrong :
         {std::string(), std::string("."), std::string(".."), std::string("COM.example.app"),
          std::string("com.example.folder"), std::string("../Registry/com.example.app"),
          std::string("com.example.app\0", 16), std::string(256, 'a')})
        EXPECT_FALSE(registry.isInstalled(wrong)) << wrong;
}

TEST(Registry, AnApplicationIsNeverMissedWhileItIsReplaced) {
    const DeviceFolder device;
    const Registry registry = device.registry();
    fs::create_directories(registry.hostPath(Registry::registryPath));
    const auto pathOf = [](int number) {
        return std::string(Registry::applicationPath) + "/" + std::to_string(number) + "/X.app";
    };
    const auto put = [&](int number) {
        putFile(registry.hostPath(pathOf(number)) / "Info.plist", "{CFBundleName = N;}");
        return static_cast<bool>(registry.enter("com.example.app", pathOf(number)));
    };
    ASSERT_TRUE(put(0));
    const std::jthread replacing([&](const std::stop_token& stop) {
        for (int number = 1; !stop.stop_requested() && put(number); ++number)
            fs::remove_all(registry.hostPath(pathOf(number - 1)).parent_path());
    });
    for (int round = 0; round < 3000; ++round) {
        ASSERT_TRUE(registry.infoOf("com.example.app")) << round;
        ASSERT_TRUE(registry.isInstalled("com.example.app")) << round;
        ASSERT_EQ(installedApplications(registry).front().name, "N") << round;
    }
}

TEST(Registry, EntersRelativeLinksInPlaceOfEarlierOnes) {
    const DeviceFolder device;
    const Registry registry = device.registry();
    const fs::path links = device.root() / "var/containers/Bundle/Registry";
    fs::create_directories(links / "com.example.taken");
    ASSERT_TRUE(registry.enter("com.example.app", "/Applications/Settings.app"));
    ASSERT_TRUE(registry.enter("com.example.app", place));
    EXPECT_EQ(fs::read_symlink(links / "com.example.app"), "../Application/1/X.app");
    EXPECT_FALSE(registry.enter("..", place));
    EXPECT_FALSE(registry.enter("com.example.taken", place));
    EXPECT_EQ(std::distance(fs::directory_iterator(links.parent_path()), {}), 1)
        << "a failure leaves no temporary link";
}

TEST(BundleInfo, AWrongTypeIsNoValue) {
    const auto read = [](const char* list) {
        return BundleInfo::from(*PropertyList::parse(list), "My.Cool.app");
    };
    const BundleInfo odd = read("{CFBundleName = N; CFBundleDisplayName = (D); SBAppTags = hidden;"
                                "CFBundleURLTypes = (odd, {CFBundleURLSchemes = (one, two);},"
                                "{CFBundleURLSchemes = odd;}, {CFBundleURLSchemes = (three);});}");
    EXPECT_TRUE(odd.displayName == "N" && !odd.hidden);
    EXPECT_EQ(odd.urlSchemes, (std::vector<std::string>{"one", "two", "three"}));
    EXPECT_TRUE(read("{SBAppTags = ({}, hidden, other);}").hidden);
    EXPECT_EQ(read("{CFBundleName = {}; SBAppTags = (other);}").displayName, "My.Cool");
}

} // namespace dubrix
