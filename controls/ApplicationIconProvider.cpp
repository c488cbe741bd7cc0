#include "controls/ApplicationIconProvider.h"

#include "controls/ApplicationIconDrawing.h"

#include <QRunnable>
#include <atomic>

namespace dubrix {

namespace {

constexpr int pixelsUnlessAsked = 29;
constexpr int mostPixels = 1024;

std::string bundlePathOf(const QString& id) {
    return QByteArray::fromBase64(id.toLatin1(), QByteArray::Base64UrlEncoding).toStdString();
}

/// One icon on its way. The scene graph deletes it after `finished`.
class IconResponse : public QQuickImageResponse, public QRunnable {
public:
    IconResponse(ApplicationIconProvider& provider, std::string bundlePath, int pixels)
        : provider_(provider),
          bundlePath_(std::move(bundlePath)),
          pixels_(pixels) {
        setAutoDelete(false);
    }

    void run() override {
        if (!cancelled_)
            image_ = provider_.icon(bundlePath_, pixels_);
        Q_EMIT finished();
    }
    void cancel() override { cancelled_ = true; }
    QQuickTextureFactory* textureFactory() const override {
        return QQuickTextureFactory::textureFactoryForImage(image_);
    }

private:
    ApplicationIconProvider& provider_;
    const std::string bundlePath_;
    const int pixels_;
    std::atomic<bool> cancelled_ = false;
    QImage image_;
};

} // namespace

ApplicationIconProvider::ApplicationIconProvider(Read read) : read_(std::move(read)) {
    readers_.setMaxThreadCount(2);
}

QString ApplicationIconProvider::addressFor(const std::string& bundlePath) {
    const QByteArray id =
        QByteArray::fromStdString(bundlePath)
            .toBase64(QByteArray::Base64UrlEncoding | QByteArray::OmitTrailingEquals);
    return QStringLiteral("image://%1/%2").arg(QLatin1String(name), QLatin1String(id));
}

QQuickImageResponse* ApplicationIconProvider::requestImageResponse(const QString& id,
                                                                   const QSize& requestedSize) {
    const int asked = requestedSize.width() > 0 ? requestedSize.width() : pixelsUnlessAsked;
    auto* response = new IconResponse(*this, bundlePathOf(id), std::min(asked, mostPixels));
    readers_.start(response);
    return response;
}

QImage ApplicationIconProvider::icon(const std::string& bundlePath, int pixels) {
    const QString key = QString::number(pixels) + addressFor(bundlePath);
    {
        const QMutexLocker lock(&keptMutex_);
        if (const QImage* kept = kept_.object(key))
            return *kept;
    }
    const auto picture = read_(bundlePath, static_cast<unsigned>(pixels));
    const QImage drawn = picture ? drawnIcon(*picture, pixels) : drawnPlaceholder(pixels);
    const int kilobytes = static_cast<int>(drawn.sizeInBytes() / 1024) + 1;
    const QMutexLocker lock(&keptMutex_);
    kept_.insert(key, new QImage(drawn), kilobytes);
    return drawn;
}

} // namespace dubrix
