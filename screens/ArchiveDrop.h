#pragma once

#include <QList>
#include <QObject>
#include <QUrl>
#include <qqmlregistration.h>

namespace dubrix {

/// Archives that are dropped on the window: hands them to whoever installs them, one after the
/// other, and says how that goes.
class ArchiveDrop : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the program")
    /// What is being done or what came of it; empty when there is nothing to say.
    Q_PROPERTY(QString words READ words NOTIFY changed)
    Q_PROPERTY(bool busy READ isBusy NOTIFY changed)
    /// Whether `words` tell of a failure.
    Q_PROPERTY(bool failed READ hasFailed NOTIFY changed)
    /// How far the installation is, 0 to 100.
    Q_PROPERTY(int percent READ percent NOTIFY changed)

public:
    using QObject::QObject;

    QString words() const { return words_; }
    bool isBusy() const { return !names_.isEmpty(); }
    bool hasFailed() const { return failed_; }
    int percent() const { return percent_; }

    /// Whether one of these can be installed.
    Q_INVOKABLE bool takes(const QList<QUrl>& files) const;
    Q_INVOKABLE void drop(const QList<QUrl>& files);
    /// The person has seen what came of it.
    Q_INVOKABLE void passed();

    void progressed(int percent);
    /// The end of the installation asked for first, with the installer's words.
    void answered(bool well, const QString& text);

Q_SIGNALS:
    void changed();
    void installationAsked(const QByteArray& path);

private:
    void sayInstalling();

    QList<QString> names_;
    QString words_;
    bool failed_ = false;
    int percent_ = 0;
};

} // namespace dubrix
