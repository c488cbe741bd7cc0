#include "files/WholeFile.h"
#include "tests/proof/PowerCutDisk.h"
#include "tests/proof/ProofDevice.h"
#include "tests/proof/SteppedProcess.h"

#include <cstring>

namespace dubrix {

namespace {

namespace fs = std::filesystem;
using Contents = ProofDevice::Contents;

const std::string identifier = "com.example.app";

/// Empty where file systems in files can be made and mounted; else why not.
std::string whyNoDisks() {
    if (std::system("PATH=$PATH:/usr/sbin:/sbin mkfs.ext4 -V >/dev/null 2>&1") != 0)
        return "mkfs.ext4 is missing";
    if (::geteuid() != 0 || ::access("/dev/loop-control", R_OK | W_OK) != 0)
        return "loop devices are not permitted here";
    return PrivateMounts::permitted() ? "" : "mounting is not permitted here";
}

fs::path memory() {
    return fs::is_directory("/dev/shm") ? "/dev/shm" : fs::temp_directory_path();
}

/// More than fits into the inodes, some of it by several threads.
std::vector<ZipItem> filesOf(const std::string& version) {
    std::vector<ZipItem> files{
        {"Payload/Long Enough X.app/Info.plist", infoPlist(identifier, version)}};
    for (int number = 0; number < 54; ++number)
        files.push_back(
            {"Payload/Long Enough X.app/" + std::to_string(number % 3) + "/" +
                 std::to_string(number),
             version + std::string(3000 + static_cast<std::size_t>(number), version[0])});
    files.push_back({"Payload/Long Enough X.app/large", std::string(1'500'000, version[0])});
    files.push_back({"Payload/Long Enough X.app/link", "0/3", S_IFLNK | 0777});
    return files;
}

} // namespace

/// A device on a disk of its own, of which copies are taken while programs work on it.
class PowerCutTest : public testing::Test {
protected:
    void SetUp() override {
        if (const std::string reason = whyNoDisks(); !reason.empty())
            GTEST_SKIP() << reason;
        const std::string image = folder_ / "image";
        const std::string make =
            "truncate -s 10M '" + image +
            "' && PATH=$PATH:/usr/sbin:/sbin "
            "mkfs.ext4 -q -b 1024 -N 1024 -E lazy_itable_init=0,lazy_journal_init=0 '" +
            image + "'";
        ASSERT_EQ(std::system(make.c_str()), 0);
        disk_.emplace(image, folder_ / "disk");
        ASSERT_TRUE(disk_->isMounted()) << std::strerror(errno);
        fs::create_directories(root() / "Applications");
        fs::create_directories((root() / (settingsFilePath + 1)).parent_path());
    }

    fs::path root() const { return disk_->folder() / "device"; }

    std::string archiveOf(const std::string& version) const {
        const fs::path archive = folder_ / (version + ".ipa");
        putFile(archive, zipOf(filesOf(version)));
        return archive;
    }

    static Contents bundleIn(const fs::path& root) {
        const Registry registry(root);
        const auto path = registry.pathOf(identifier);
        return path ? ProofDevice::contentsBelow(registry.hostPath(*path)) : Contents{};
    }

    /// Shows `look` what a cut of power leaves now; it may change that.
    void cut(const std::function<void(const fs::path& root)>& look) {
        const std::string copy = folder_ / "copy";
        disk_->copyTo(copy);
        writes_ = disk_->writes();
        const PowerCutDisk left(copy, folder_ / "left");
        ASSERT_TRUE(left.isMounted()) << std::strerror(errno);
        look(left.folder() / "device");
        fs::remove(copy);
        ++cuts_;
    }

    /// Runs the program on the device. Power is cut before each of its steps, before and after the
    /// file system has by chance written its names just then, or never has; `look` is shown the
    /// rest.
    void runWithCuts(const std::vector<std::string>& words,
                     const std::function<void(const fs::path& root)>& look, bool commits) {
        disk_->writeAll();
        const int status = runStepwise(words, [&](long call, int count) {
            SCOPED_TRACE("before call " + std::to_string(call) + ", the " + std::to_string(count) +
                         ".");
            const bool isOneOfMany = call == SYS_unlinkat || call == SYS_mkdirat;
            const bool isLeftOut = isOneOfMany && count > 1 && count % 16 != 0;
            if (isLeftOut || HasFatalFailure())
                return;
            if (count == 1 || disk_->writes() != writes_)
                cut(look);
            if (commits) {
                disk_->commit();
                cut(look);
            }
        });
        EXPECT_EQ(status, 0);
    }

    const TemporaryFolder folder_{memory()};
    std::optional<PowerCutDisk> disk_;
    /// Those there were when power was cut last.
    std::string writes_;
    int cuts_ = 0;
};

TEST_F(PowerCutTest, AnApplicationIsTheOldOrTheNewWhole) {
    const std::string installer = PROGRAMS "/ipainstaller";
    const std::string first = archiveOf("1"), second = archiveOf("2");
    Contents wholes[3];
    for (const bool commits : {true, false}) {
        for (const char* const next : {"-f 1", "-f 2", "-U", "-r", "-u"}) {
            const Contents before = bundleIn(root());
            std::vector<std::string> words{installer, "--root", root(), next, identifier};
            if (next[1] == 'f')
                words = {installer, "--root", root(), "-f", next[3] == '1' ? first : second};
            std::vector<Contents> seen;
            runWithCuts(
                words,
                [&](const fs::path& left) {
                    seen.push_back(bundleIn(left));
                    // Now and then: that device can be used again.
                    if (seen.size() % 6 == 0) {
                        ASSERT_TRUE(Installer(left).install(first));
                        EXPECT_EQ(bundleIn(left).size(), 60U);
                    }
                },
                commits);
            const Contents after = bundleIn(root());
            ASSERT_NE(before, after);
            for (const Contents& found : seen)
                ASSERT_TRUE(found == before || found == after)
                    << next << ": " << found.size() << " files";
            EXPECT_EQ(seen.front(), before);
            cut([&](const fs::path& left) {
                EXPECT_TRUE(bundleIn(left) == after) << "what has been said is on the disk";
            });
        }
    }
    std::printf("%d cuts\n", cuts_);
}

TEST_F(PowerCutTest, SettingsAreTheOldOrTheNew) {
    const fs::path file = root() / (settingsFilePath + 1);
    for (const bool commits : {true, false}) {
        fs::remove(file);
        for (const char letter : {'a', 'b', 'c'}) {
            const auto before = readWholeFile(file);
            std::vector<std::optional<std::string>> seen;
            runWithCuts(
                {DUPLICATE_ONCE, root(), "set", "customText", std::string(20'000, letter)},
                [&](const fs::path& left) {
                    seen.push_back(readWholeFile(left / (settingsFilePath + 1)));
                },
                commits);
            const auto after = readWholeFile(file);
            ASSERT_NE(before, after);
            for (const auto& found : seen)
                ASSERT_TRUE(found == before || found == after)
                    << found.value_or("").size() << " bytes";
        }
    }
    std::printf("%d cuts\n", cuts_);
}

} // namespace dubrix
