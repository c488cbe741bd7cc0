#include "tests/device/DeviceFolder.h"

#include <csignal>
#include <functional>
#include <set>

namespace dubrix {

namespace {

/// The work of an installer in a child that is killed at one step; true when it came to its end
/// before that step.
bool survives(const DeviceFolder& device, int fatalStep,
              const std::function<bool(Installer&)>& work) {
    const int status = inChild([&] {
        int step = 0;
        Installer installer = device.installer([&](std::string_view) {
            if (step++ == fatalStep)
                ::kill(::getpid(), SIGKILL);
        });
        return work(installer);
    });
    EXPECT_TRUE(status == 0 || (WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL)) << status;
    return status == 0;
}

const std::vector<std::string> names{"a", "sub/b", "large", "sub/larger", "link"};

/// Together the large files are enough to be unpacked by several threads.
std::string contentsIn(const std::string& version, const std::string& name) {
    std::string contents = version;
    if (name.find("large") != std::string::npos)
        contents.resize(1'200'000, version.front());
    return contents;
}

std::vector<ZipItem> filesOf(const std::string& version) {
    std::vector<ZipItem> files;
    for (const std::string& name : names)
        if (name != "link")
            files.push_back({name, contentsIn(version, name)});
    files.push_back({"sub/", "", S_IFDIR | 0555});
    files.push_back({"link", "sub/b", S_IFLNK | 0777});
    return files;
}

} // namespace

TEST(InstallerKill, LeavesTheOldStateOrTheNewOneAtEveryStep) {
    const std::string identifier = "com.example.app";
    const struct {
        std::string before;
        std::string after;
    } changes[] = {{"not installed", "1"}, {"1", "2"}, {"2", "not installed"}};
    for (const auto& [before, after] : changes) {
        std::set<std::string> seen;
        bool finished = false;
        for (int step = 0; !finished; ++step) {
            SCOPED_TRACE(before + " to " + after + ", killed at step " + std::to_string(step));
            ASSERT_LT(step, 100);
            const DeviceFolder device;
            const auto archiveOf = [&](const std::string& version) {
                return device.application(identifier, version, filesOf(version));
            };
            if (before != "not installed") {
                ASSERT_TRUE(device.installer().install(archiveOf(before)));
            }
            finished = survives(device, step, [&](Installer& installer) -> bool {
                return after == "not installed"
                           ? static_cast<bool>(installer.uninstall(identifier))
                           : static_cast<bool>(installer.install(archiveOf(after)));
            });

            const std::string version = device.versionOf(identifier);
            EXPECT_TRUE(version == before || version == after) << version;
            EXPECT_TRUE(!finished || version == after) << version;
            seen.insert(version);
            for (const std::string& name : names)
                EXPECT_TRUE(contentsOf(device.installed(identifier, name)) ==
                            (version == "not installed" ? "" : contentsIn(version, name)))
                    << name;

            ASSERT_TRUE(device.installer().install(device.application("com.example.next", "1")));
            EXPECT_EQ(device.leftovers(), 0);
            EXPECT_EQ(device.versionOf(identifier), version);
        }
        EXPECT_EQ(seen, (std::set<std::string>{before, after}));
    }
}

TEST(InstallerKill, TheNextRunSweepsEveryKindOfLeftover) {
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
