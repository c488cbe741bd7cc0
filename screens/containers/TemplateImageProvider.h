#pragma once

#include <QQuickImageProvider>

namespace dubrix {

/// Images of the application's resources drawn as templates: only their shape counts, and it is
/// filled with one colour. Ids are "<file name>/<colour as [aa]rrggbb>".
class TemplateImageProvider : public QQuickImageProvider {
public:
    TemplateImageProvider() : QQuickImageProvider(QQuickImageProvider::Image) {}

    /// The image scaled from its finest variant; null for a file that is not there.
    QImage requestImage(const QString& id, QSize* size, const QSize& requestedSize) override;
};

} // namespace dubrix
