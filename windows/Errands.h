#pragma once

#include "windows/Desk.h"

#include <QList>
#include <QUrl>

namespace dubrix {

/// What a window has the launcher do, one errand after the other, how far that is and what came of
/// it, in words for the person. Both windows have this one queue.
class Errands : public QObject {
    Q_OBJECT

public:
    enum class Kind { Start, Remove, Restore, Save, Install };

    /// The end of an errand. An errand that failed has a reason.
    struct Outcome {
        QString words;
        QString reason{};
        /// The application that was removed, or still is, with an identifier as long as it can be
        /// put back.
        struct Removal {
            QString name;
            QByteArray identifier;
        };
        std::optional<Removal> removal{};
    };

    explicit Errands(Desk& desk);

    /// `subject` is what words call it: the application's name, or the file's. `argument` is the
    /// desk's.
    void run(Kind kind, const QString& subject, const QByteArray& argument = {});

    /// Whether one of these is an application's archive or folder on this machine, by its name.
    static bool takes(const QList<QUrl>& files);
    /// Installs those that are.
    void install(const QList<QUrl>& files);

    /// Says that nothing has opened this address.
    void tellNotOpened(const QString& address);

    bool isBusy() const { return !waiting_.isEmpty(); }
    /// What is being done, e.g. "Installing Fernleaf.ipa, 2 more to do"; empty when nothing is that
    /// needs words.
    QString doing() const;
    /// How far that is; -1 when nothing tells.
    int percent() const { return percent_; }
    /// What came of what was done since nothing was waiting, and of addresses, in order; of many
    /// the last, for which a window has room.
    const QList<Outcome>& outcomes() const { return outcomes_; }
    /// The person has seen them.
    void forget();

Q_SIGNALS:
    void changed();
    /// An errand has ended about which there is something to say: the last of outcomes().
    void ended();

private:
    struct Errand {
        Kind kind;
        QString subject;
        QByteArray argument;
    };

    static constexpr qsizetype mostOutcomes = 6;

    void add(const Outcome& outcome);
    void begin();
    void finish(const DeskAnswer& answer);

    Desk& desk_;
    /// The first is on its way.
    QList<Errand> waiting_;
    int percent_ = -1;
    QList<Outcome> outcomes_;
};

} // namespace dubrix
