#include "files/WholeFile.h"
#include "tests/support/TemporaryFolder.h"

#include <cstddef>
#include <fcntl.h>
#include <future>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/file.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <vector>

namespace dubrix {

namespace fs = std::filesystem;

namespace {

/// From here on this thread is on a system that makes no files without a name.
bool forbidUnnamedFiles() {
    constexpr unsigned flagsOfOpenat = offsetof(seccomp_data, args) + 2 * sizeof(std::uint64_t);
    sock_filter steps[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_openat, 0, 3),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, flagsOfOpenat),
        BPF_JUMP(BPF_JMP | BPF_JSET | BPF_K, O_TMPFILE & ~O_DIRECTORY, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ERRNO | EOPNOTSUPP),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog filter{std::size(steps), steps};
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) == 0;
}

} // namespace

TEST(WholeFile, ReplacesWholeOrNotAtAll) {
    const TemporaryFolder folder;
    const fs::path file = folder / "a";
    EXPECT_TRUE(replaceWholeFile(file, "first"));
    EXPECT_EQ(fs::status(file).permissions(), fs::perms(0644));
    fs::permissions(file, fs::perms(0640));
    EXPECT_TRUE(replaceWholeFile(file, std::string("\0second", 7)));
    EXPECT_EQ(readWholeFile(file), std::string("\0second", 7));
    EXPECT_EQ(fs::status(file).permissions(), fs::perms(0640));
    fs::create_symlink("a", folder / "link");
    EXPECT_TRUE(replaceWholeFile(folder / "link", "new")) << "itself";
    EXPECT_EQ(readWholeFile(file), std::string("\0second", 7));
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(folder / "link")));

    putFile(folder / "target/inside", "old");
    EXPECT_FALSE(replaceWholeFile(folder / "target", "new")) << "a folder cannot be replaced";
    EXPECT_FALSE(replaceWholeFile(folder / "missing/file", "new"));
    EXPECT_FALSE(replaceWholeFile(folder.path() / "", "new"));
    EXPECT_EQ(contentsOf(folder / "target/inside"), "old");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 3);
}

TEST(WholeFile, TheNextWriteSweepsWhatAKilledWriterLeftAndNothingElse) {
    for (const bool named : {false, true}) {
        const TemporaryFolder folder;
        putFile(folder / "a", "old");
        for (const char* name : {".a.dubrix-0", ".a.dubrix-2", ".dubrix-backup", ".b.dubrix-0"})
            putFile(folder / name, "half");
        fs::create_symlink("target", folder / ".a.dubrix-1");
        const int atWork = ::open((folder / ".a.dubrix-2").c_str(), O_RDONLY | O_CLOEXEC);
        ASSERT_EQ(::flock(atWork, LOCK_EX), 0);
        EXPECT_TRUE(std::async(std::launch::async, [&] {
                        return (!named || forbidUnnamedFiles()) &&
                               replaceWholeFile(folder / "a", "new");
                    }).get());
        ::close(atWork);
        EXPECT_FALSE(fs::exists(folder / ".a.dubrix-0"));
        for (const char* name : {".a.dubrix-2", ".dubrix-backup", ".b.dubrix-0"})
            EXPECT_EQ(contentsOf(folder / name), "half") << name;
        EXPECT_TRUE(fs::is_symlink(folder / ".a.dubrix-1"));
        EXPECT_EQ(contentsOf(folder / "a"), "new");
    }
}

TEST(WholeFile, WritersAtTheSameTimeTakeNothingFromOneAnother) {
    for (const bool named : {false, true}) {
        const TemporaryFolder folder;
        const auto write = [&](int writer) {
            if (named && !forbidUnnamedFiles())
                return false;
            const std::string bytes(100, static_cast<char>('a' + writer));
            for (int round = 0; round < 300; ++round)
                if (!replaceWholeFile(folder / (round % 2 == 0 ? "shared" : bytes.substr(0, 1)),
                                      bytes, Durability::Process))
                    return false;
            return true;
        };
        std::vector<std::future<bool>> writers;
        for (int writer = 0; writer < 4; ++writer)
            writers.push_back(std::async(std::launch::async, write, writer));
        for (std::future<bool>& writer : writers)
            EXPECT_TRUE(writer.get());
        const std::string shared = contentsOf(folder / "shared");
        EXPECT_EQ(shared, std::string(100, shared[0]));
        EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 5);
    }
}

TEST(WholeFile, ReadsOnlyRegularFilesWithinTheLimit) {
    const TemporaryFolder folder;
    putFile(folder / "five", "12345");
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(readWholeFile(folder / "five", 5), "12345");
    EXPECT_EQ(readWholeFile(folder / "five", 4), std::nullopt);
    EXPECT_EQ(readWholeFile(folder / "missing"), std::nullopt);
    EXPECT_EQ(readWholeFile(folder.path()), std::nullopt);
    EXPECT_EQ(readWholeFile(folder / "pipe"), std::nullopt);
}

} // namespace dubrix
