#include "files/WholeFile.h"
#include "tests/proof/ProofDevice.h"

#include <cstring>

namespace dubrix {

namespace {

namespace fs = std::filesystem;

const std::string identifier = "com.example.app";

/// Whether the shell has done it, where the tools of whoever runs the system are.
bool shell(const std::string& command) {
    return std::system(("PATH=$PATH:/usr/sbin:/sbin; " + command).c_str()) == 0;
}

/// A file system in a file. What the system still keeps in its memory is not in the file: a copy of
/// it is the disk as a cut of power would leave it. Only below PrivateMounts, so that nothing is
/// left however the process ends.
class PowerCutDisk {
public:
    /// Mounts the file system in `image` on the folder; check isMounted.
    PowerCutDisk(std::string image, std::string folder)
        : image_(std::move(image)),
          folder_(std::move(folder)) {
        fs::create_directories(folder_);
        // Nothing is written in time's course, and a rename does not flush what it puts in place:
        // not every file system does.
        isMounted_ = shell("mount -t ext4 -o loop,noatime,commit=300,noauto_da_alloc '" + image_ +
                           "' '" + folder_ + "'");
    }
    ~PowerCutDisk() {
        // The loop device ends with the mount.
        if (isMounted_ && ::umount2(folder_.c_str(), 0) != 0)
            ::umount2(folder_.c_str(), MNT_DETACH);
    }
    PowerCutDisk(const PowerCutDisk&) = delete;
    PowerCutDisk& operator=(const PowerCutDisk&) = delete;

    bool isMounted() const { return isMounted_; }
    fs::path root() const { return folder_ + "/device"; }

    /// Has the file system write down which files and folders there are, as it does by itself every
    /// few seconds. It need not write their bytes then.
    void commit() const {
        const std::string file = "'" + folder_ + "/unrelated'";
        ASSERT_TRUE(shell("echo x >" + file + " && sync " + file));
    }

    /// Everything, as one who wants to begin from a known state.
    void writeAll() const { ASSERT_TRUE(shell("sync -f '" + folder_ + "'")); }

    /// The disk as it is at one moment: read again, when a write was on its way.
    std::string bytes() const {
        std::string bytes;
        for (std::string before = "none"; before != bytes;)
            before = std::exchange(bytes, readWholeFile(image_).value_or(""));
        return bytes;
    }

private:
    std::string image_;
    std::string folder_;
    bool isMounted_ = false;
};

/// More than fits into the inodes, some of it by several threads.
std::string archiveOf(char version) {
    const std::string bundle = "Payload/Long Enough X.app/";
    std::vector<ZipItem> files{{bundle + "Info.plist", infoPlist(identifier, {version})},
                               {bundle + "large", std::string(1'500'000, version)},
                               {bundle + "link", "0/3", S_IFLNK | 0777}};
    for (int number = 0; number < 54; ++number)
        files.push_back({bundle + std::to_string(number % 3) + "/" + std::to_string(number),
                         std::string(3000 + static_cast<std::size_t>(number), version)});
    return zipOf(files);
}

Contents bundleIn(const fs::path& root) {
    const Registry registry(root);
    return contentsBelow(registry.hostPath(registry.pathOf(identifier).value_or("/none")));
}

Contents settingsIn(const fs::path& root) {
    return {{"settings", readWholeFile(root / (settingsFilePath + 1)).value_or("none")}};
}

} // namespace

/// A device on a disk of its own, of which copies are taken while programs work on it.
class PowerCutTest : public testing::Test {
protected:
    using State = Contents (*)(const fs::path& root);

    void SetUp() override {
        if (::geteuid() != 0 || ::access("/dev/loop-control", R_OK | W_OK) != 0 ||
            !shell("mkfs.ext4 -V 2>/dev/null") || !PrivateMounts::permitted())
            GTEST_SKIP() << "file systems in files cannot be made and mounted here";
        const std::string image = folder_ / "image";
        ASSERT_TRUE(shell("truncate -s 10M '" + image +
                          "' && mkfs.ext4 -q -b 1024 -N 1024 -E "
                          "lazy_itable_init=0,lazy_journal_init=0 '" +
                          image + "'"));
        disk_.emplace(image, folder_ / "disk");
        ASSERT_TRUE(disk_->isMounted());
        fs::create_directories(disk_->root() / "Applications");
        fs::create_directories((disk_->root() / (settingsFilePath + 1)).parent_path());
    }

    /// What a cut of power leaves now of what `state` looks at. Now and then that device is used
    /// again.
    Contents cut(State state) {
        const std::string copy = folder_ / "copy";
        if (std::string bytes = disk_->bytes(); std::exchange(cut_, bytes) == bytes)
            return found_;
        putFile(copy, cut_);
        const PowerCutDisk left(copy, folder_ / "left");
        EXPECT_TRUE(left.isMounted()) << std::strerror(errno);
        found_ = state(left.root());
        if (++cuts_ % 6 == 0) {
            putFile(folder_ / "next.ipa", archiveOf('3'));
            EXPECT_TRUE(Installer(left.root()).install(folder_ / "next.ipa"));
            EXPECT_EQ(bundleIn(left.root()).size(), 60U);
        }
        return found_;
    }

    /// Runs the program on the device. Power is cut before each of its steps, before and after the
    /// file system has by chance written its names just then, or never has: the state is the old or
    /// the new one; that of an application is the new one when the program has ended.
    void runWithCuts(const std::vector<std::string>& words, State state, bool commits) {
        disk_->writeAll();
        cut_.clear();
        const Contents before = state(disk_->root());
        std::vector<Contents> seen;
        std::map<long, int> counts;
        const ProcessGroup group(words, PROGRAMS ":/usr/bin:/bin", folder_ / "output",
                                 ProcessGroup::Start::Stepwise);
        const auto status = group.stepThrough(namingCalls, [&](const ProcessGroup::Step& step) {
            const int count = ++counts[step.call];
            const bool isOneOfMany = step.call == SYS_unlinkat || step.call == SYS_mkdirat;
            if (isOneOfMany && count > 1 && count % 16 != 0)
                return;
            seen.push_back(cut(state));
            if (commits) {
                disk_->commit();
                seen.push_back(cut(state));
            }
        });
        EXPECT_EQ(status, 0);
        const Contents after = state(disk_->root());
        ASSERT_NE(before, after);
        for (const Contents& found : seen)
            ASSERT_TRUE(found == before || found == after) << found.size() << " files";
        EXPECT_EQ(seen.front(), before);
        if (state == bundleIn) {
            EXPECT_TRUE(cut(state) == after) << "what has been said is on the disk";
        }
    }

    const TemporaryFolder folder_{placeInMemory()};
    std::optional<PowerCutDisk> disk_;
    /// The disk on which power was cut last, and what was found on it.
    std::string cut_;
    Contents found_;
    int cuts_ = 0;
};

TEST_F(PowerCutTest, AnApplicationIsTheOldOrTheNewWhole) {
    for (const char version : {'1', '2'})
        putFile(folder_ / (std::string{version} + ".ipa"), archiveOf(version));
    const std::vector<std::string> commands[] = {{"-f", folder_ / "1.ipa"},
                                                 {"-f", folder_ / "2.ipa"},
                                                 {"-U", identifier},
                                                 {"-r", identifier},
                                                 {"-u", identifier}};
    for (const bool commits : {true, false})
        for (const auto& command : commands) {
            SCOPED_TRACE(command.front());
            std::vector<std::string> words{"ipainstaller", "--root", disk_->root()};
            words.insert(words.end(), command.begin(), command.end());
            runWithCuts(words, bundleIn, commits);
        }
}

TEST_F(PowerCutTest, SettingsAreTheOldOrTheNew) {
    for (const bool commits : {true, false})
        for (const char letter : {'a', 'b', 'c'})
            runWithCuts({"dubrix-terminal", "--root", disk_->root(), "settings", "name",
                         std::string(20'000, letter)},
                        settingsIn, commits);
}

} // namespace dubrix
