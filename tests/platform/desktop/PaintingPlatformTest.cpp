#include "platform/desktop/PaintingPlatform.h"
#include "platform/posix/PosixPlatform.h"
#include "tests/support/TemporaryFolder.h"

#include <QCoreApplication>
#include <QTimer>
#include <sys/stat.h>

namespace dubrix {

TEST(PaintingPlatform, TheEventLoopGoesOnMeanwhile) {
    int argumentCount = 1;
    char name[] = "painting_wait_tests";
    char* arguments[] = {name, nullptr};
    const QCoreApplication application(argumentCount, arguments);
    const TemporaryFolder folder;
    PosixPlatform posix("/");
    PaintingPlatform painting(posix.ports());
    const Platform platform = painting.ports();
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    const std::string reading =
        "cd '" + folder.path().native() + "' && read -r line < pipe; echo $line > out";
    // The command ends only when the timer, which needs the event loop, has fired.
    QTimer::singleShot(0, [&folder] { std::ofstream(folder / "pipe") << "go\n"; });
    platform.commands.runCommand(reading);
    EXPECT_EQ(contentsOf(folder / "out"), "go\n");

    // Told to quit meanwhile, it still waits for the end.
    QTimer::singleShot(0, [&folder] {
        QCoreApplication::quit();
        std::ofstream(folder / "pipe") << "end\n";
    });
    platform.commands.runCommand(reading);
    EXPECT_EQ(contentsOf(folder / "out"), "end\n");

    // A folder's removal, which can take as long as a command's run, lets it go on too.
    PosixFileManager files(folder.path());
    putFile(folder / "tmp/staging/file", "");
    bool wentOn = false;
    QTimer::singleShot(0, [&wentOn] { wentOn = true; });
    EXPECT_TRUE(PaintingFileManager(files).removeItemAtPath("/tmp/staging"));
    EXPECT_TRUE(wentOn);
}

} // namespace dubrix
