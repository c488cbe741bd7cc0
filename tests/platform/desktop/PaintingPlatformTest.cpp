#include "platform/desktop/PaintingPlatform.h"
#include "platform/desktop/PaintingWait.h"
#include "platform/posix/PosixPlatform.h"
#include "tests/support/TemporaryFolder.h"

#include <QCoreApplication>
#include <QMouseEvent>
#include <QRasterWindow>
#include <QTimer>
#include <future>
#include <qpa/qwindowsysteminterface.h>
#include <sys/stat.h>
#include <thread>

namespace dubrix {

struct TapCounter final : QRasterWindow {
    void mousePressEvent(QMouseEvent*) override { ++taps; }
    void paintEvent(QPaintEvent*) override { ++frames; }

    int taps = 0, frames = 0;
};

TEST(PaintingPlatform, TheEventLoopGoesOnMeanwhile) {
    const TemporaryFolder folder;
    PosixPlatform posix(folder.path());
    PaintingPlatform painting(posix.ports());
    const Platform platform = painting.ports();
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    // The command ends only when the timer, which needs the event loop, has fired; told to quit
    // meanwhile, it is still waited for.
    QTimer::singleShot(0, [&folder] {
        QCoreApplication::quit();
        std::ofstream(folder / "pipe") << "line\n";
    });
    platform.commands.runCommand("cd '" + folder.path().native() +
                                 "' && read -r line < pipe; echo $line > out");
    EXPECT_EQ(contentsOf(folder / "out"), "line\n");

    // What else may take long lets it go on, too.
    putFile(folder / "tmp/staging/file", "");
    const std::function<void()> works[] = {
        [&] { EXPECT_FALSE(platform.files.sizesOfItemsBelowPath("/tmp/staging").empty()); },
        [&] { EXPECT_TRUE(platform.files.removeItemAtPath("/tmp/staging")); },
        [&] { EXPECT_FALSE(platform.monochrome.monochromePng("", 0, 0, 0)); }};
    for (const auto& work : works) {
        bool wentOn = false;
        QTimer::singleShot(0, [&wentOn] { wentOn = true; });
        work();
        EXPECT_TRUE(wentOn) << &work - works;
    }
    EXPECT_FALSE(platform.files.fileExistsAtPath("/tmp/staging"));
    EXPECT_TRUE(platform.files.createDirectoryAtPath("/tmp/staging"));
    EXPECT_TRUE(platform.files.writeToFile("/tmp/staging/file", "bytes"));
    EXPECT_EQ(platform.files.contentsAtPath("/tmp/staging/file"), "bytes");
}

TEST(PaintingPlatform, FramesComeAndTapsAreKeptForLater) {
    TapCounter window;
    window.resize(100, 100);
    window.show();
    QCoreApplication::processEvents();

    std::promise<void> painted;
    QTimer again;
    QObject::connect(&again, &QTimer::timeout, &window, [&, before = window.frames] {
        window.update();
        if (window.frames > before + 1) {
            again.stop();
            painted.set_value();
        }
    });
    again.start();
    QWindowSystemInterface::handleMouseEvent(&window, {50, 50}, {50, 50}, Qt::LeftButton,
                                             Qt::LeftButton, QEvent::MouseButtonPress);
    // Ends only when frames were painted meanwhile.
    waitWhilePainting([&painted] { painted.get_future().wait(); });
    EXPECT_EQ(window.taps, 0);
    QCoreApplication::processEvents();
    EXPECT_EQ(window.taps, 1);
    // Elsewhere than on the main thread there is nothing to keep painting.
    std::thread([] {
        const auto outer = std::this_thread::get_id();
        waitWhilePainting([outer] { EXPECT_EQ(std::this_thread::get_id(), outer); });
    }).join();
}

} // namespace dubrix
