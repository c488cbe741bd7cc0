#include "device/confine/ProgressBar.h"
#include "tests/device/DeviceFolder.h"

namespace dubrix {

TEST(ProgressBar, KeepsWithinTheTerminal) {
    const struct {
        const char* title;
        unsigned percent;
        unsigned columns;
        const char* line;
    } cases[] = {
        {"a.ipa", 0, 40, "  0% [..........] a.ipa"},
        {"a.ipa", 99, 40, " 99% [#########.] a.ipa"},
        {"a.ipa", 100, 40, "100% [##########] a.ipa"},
        {"grüße.ipa", 50, 21, " 50% [####....] grüße"},
        {"例例例.ipa", 50, 20, " 50% [####....] 例例"},
        {"a.ipa", 50, 16, " 50% [####....] "},
        {"a.ipa", 50, 8, " 50% a.i"},
        {"a.ipa", 50, 0, " 50%"},
    };
    for (const auto& each : cases)
        EXPECT_EQ(progressLine(each.title, each.percent, each.columns), each.line);
}

TEST(Installer, TellsHowFarItIsInBytes) {
    const DeviceFolder device;
    const std::string large(600'000, 'x');
    const auto archive = device.application(
        "com.example.a", "1", {{"large", large}, {"packed", large, S_IFREG | 0644, 8}});
    const std::uint64_t all = 2 * large.size() + infoPlist("com.example.a").size();
    std::vector<std::uint64_t> told;
    Installer installer(device.root(), [&](std::uint64_t done, std::uint64_t total) {
        EXPECT_EQ(total, all);
        told.push_back(done);
    });
    const auto expectSteps = [&] {
        EXPECT_TRUE(std::is_sorted(told.begin(), told.end()));
        EXPECT_GT(told.size(), 4u); // on the way, too
        ASSERT_FALSE(told.empty());
        EXPECT_EQ(told.back(), all);
        told.clear();
    };
    ASSERT_TRUE(installer.install(archive));
    expectSteps();
    ASSERT_TRUE(installer.exportTo("com.example.a", device.folder() / "out.ipa"));
    expectSteps();
}

} // namespace dubrix
