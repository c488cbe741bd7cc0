#include "platform/desktop/PaintingWait.h"

#include <QGuiApplication>
#include <QMouseEvent>
#include <QRasterWindow>
#include <QSemaphore>
#include <QTimer>
#include <gtest/gtest.h>
#include <qpa/qwindowsysteminterface.h>
#include <thread>

namespace dubrix {

namespace {

class TapCounter final : public QRasterWindow {
public:
    int taps = 0;
    int frames = 0;

protected:
    void mousePressEvent(QMouseEvent*) override { ++taps; }
    void paintEvent(QPaintEvent*) override { ++frames; }
};

} // namespace

TEST(PaintingWait, FramesComeAndTapsAreKeptForLater) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    int argumentCount = 1;
    char name[] = "painting_wait_tests";
    char* arguments[] = {name, nullptr};
    const QGuiApplication application(argumentCount, arguments);
    TapCounter window;
    window.resize(100, 100);
    window.show();
    QCoreApplication::processEvents();

    QSemaphore painted;
    const int framesBefore = window.frames;
    QTimer again;
    QObject::connect(&again, &QTimer::timeout, &window, [&window, &painted, framesBefore] {
        window.update();
        if (window.frames > framesBefore + 1)
            painted.release();
    });
    again.start();
    QWindowSystemInterface::handleMouseEvent(&window, {50, 50}, {50, 50}, Qt::LeftButton,
                                             Qt::LeftButton, QEvent::MouseButtonPress);
    std::thread::id worker;
    waitWhilePainting([&painted, &worker] {
        worker = std::this_thread::get_id();
        painted.acquire(); // ends only when frames were painted meanwhile
    });
    EXPECT_NE(worker, std::this_thread::get_id());
    EXPECT_EQ(window.taps, 0);
    QCoreApplication::processEvents();
    EXPECT_EQ(window.taps, 1);

    // Elsewhere than on the main thread there is nothing to keep painting.
    std::thread other([] {
        std::thread::id inner;
        waitWhilePainting([&inner] { inner = std::this_thread::get_id(); });
        EXPECT_EQ(inner, std::this_thread::get_id());
    });
    other.join();
}

} // namespace dubrix
