#pragma once

#include "windows/Errands.h"

#include <qqmlregistration.h>

namespace dubrix {

/// Archives that are dropped on the window: has them installed and says how that goes.
class ArchiveDrop : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the program")
    /// What came of what was dropped last and what is still being done, a line for each; empty when
    /// there is nothing to say.
    Q_PROPERTY(QString words READ words NOTIFY changed)
    Q_PROPERTY(bool busy READ isBusy NOTIFY changed)
    /// Whether `words` tell of a failure.
    Q_PROPERTY(bool failed READ hasFailed NOTIFY changed)
    /// How far the installation is, 0 to 100.
    Q_PROPERTY(int percent READ percent NOTIFY changed)

public:
    explicit ArchiveDrop(Errands& errands);

    QString words() const;
    bool isBusy() const { return errands_.isBusy(); }
    bool hasFailed() const;
    int percent() const { return qMax(0, errands_.percent()); }

    /// Whether one of these can be installed.
    Q_INVOKABLE bool takes(const QList<QUrl>& files) const { return Errands::takes(files); }
    Q_INVOKABLE void drop(const QList<QUrl>& files) { errands_.install(files); }
    /// The person has seen what came of it.
    Q_INVOKABLE void passed() { errands_.forget(); }

Q_SIGNALS:
    void changed();

private:
    Errands& errands_;
};

} // namespace dubrix
