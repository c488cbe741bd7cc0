#include "platform/desktop/PaintingWait.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QThread>
#include <thread>

namespace dubrix {

void waitWhilePainting(const std::function<void()>& work) {
    const QCoreApplication* const application = QCoreApplication::instance();
    if (!application || QThread::currentThread() != application->thread()) {
        work();
        return;
    }
    QEventLoop loop;
    std::thread worker([&work, &loop] {
        work();
        QMetaObject::invokeMethod(&loop, &QEventLoop::quit, Qt::QueuedConnection);
    });
    loop.exec(QEventLoop::ExcludeUserInputEvents);
    // The loop also ends when the application is told to quit; the work is still waited for.
    worker.join();
}

} // namespace dubrix
