#pragma once

#include "device/home/HomeApplications.h"
#include "windows/Errands.h"

#include <QList>
#include <QObject>
#include <QUrl>
#include <qqmlregistration.h>

namespace dubrix {

/// What a home screen does when it is used: starting the application, removing, saving and
/// installing others by way of the launcher, and what it says about all that. The layout binds to
/// its state and sends back what the person does.
class HomeScreen : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("Made by the program")
    Q_PROPERTY(dubrix::HomeApplications* applications READ applications CONSTANT)
    /// The application that this program belongs to, which stands in the dock.
    Q_PROPERTY(QString ownName READ ownName CONSTANT)
    Q_PROPERTY(QString ownIcon READ ownIcon CONSTANT)

    /// What is being done, e.g. "Installing Fernleaf.ipa"; empty when nothing is.
    Q_PROPERTY(QString errand READ errand NOTIFY errandChanged)
    /// How far that is; -1 when nothing tells.
    Q_PROPERTY(int percent READ percent NOTIFY errandChanged)
    /// Passing remarks, a line for each; empty when there is none. Without another one, what was
    /// removed last, as long as that can be undone.
    Q_PROPERTY(QString remark READ remark NOTIFY remarkChanged)
    /// What the remark offers to do; empty when it passes by itself.
    Q_PROPERTY(QString remarkAction READ remarkAction NOTIFY remarkChanged)
    /// A question or a failure that is to be answered before anything else; none without a title.
    Q_PROPERTY(QString alertTitle READ alertTitle NOTIFY alertChanged)
    Q_PROPERTY(QString alertText READ alertText NOTIFY alertChanged)
    /// What the alert offers to do; empty when it can only be put away.
    Q_PROPERTY(QString alertAction READ alertAction NOTIFY alertChanged)

public:
    /// `own` is the bundle folder of the application itself on this machine. The errands may be
    /// null: then nothing can be changed.
    HomeScreen(HomeApplications& applications, Errands* errands, const std::filesystem::path& own,
               QObject* parent = nullptr);

    HomeApplications* applications() const { return &applications_; }
    QString ownName() const { return ownName_; }
    QString ownIcon() const { return ownIcon_; }
    QString errand() const;
    int percent() const;
    QString remark() const;
    QString remarkAction() const;
    QString alertTitle() const { return alert_.title; }
    QString alertText() const { return alert_.text; }
    QString alertAction() const { return alert_.action; }

    Q_INVOKABLE void tapOwn();
    Q_INVOKABLE void tap(const QString& identifier);
    /// Asks first.
    Q_INVOKABLE void remove(const QString& identifier);
    /// Saves the application as an archive among the person's downloads and says where.
    Q_INVOKABLE void save(const QString& identifier);
    /// Whether one of these can be installed by dropping it.
    Q_INVOKABLE bool takes(const QList<QUrl>& files) const;
    /// Installs those that can be.
    Q_INVOKABLE void drop(const QList<QUrl>& files);

    Q_INVOKABLE void alertAccepted();
    Q_INVOKABLE void alertDismissed();
    Q_INVOKABLE void remarkPassed();
    /// Puts back what was removed last, if that is possible, also when the remark on it has passed.
    Q_INVOKABLE void undo();

    /// The position that the arrow, page or end key `key` leads to from `position`, among `count`
    /// icons on pages of `columns` by `rows`. Left and right go on in reading order, up and down
    /// stay in the column and on the page; -1 for another key.
    Q_INVOKABLE static int walk(int key, int position, int count, int columns, int rows);

Q_SIGNALS:
    void errandChanged();
    void remarkChanged();
    void alertChanged();

private:
    struct Alert {
        QString title{};
        QString text{};
        QString action{};
        /// The application that the action removes.
        QString identifier{};
    };

    /// False, with a remark, where nothing can be changed.
    bool mayChange();
    void tellOutcome();
    void say(const QString& remark);
    void alert(const Alert& alert);
    QString nameOf(const QString& identifier) const;

    HomeApplications& applications_;
    Errands* errands_;
    QString ownName_;
    QString ownIcon_;
    QString remark_;
    /// What can be undone, and what was said of it; no words when that has passed.
    std::optional<Errands::Outcome> removal_;
    Alert alert_;
    /// Failures that wait until the alert on the screen has been answered.
    QList<Alert> alerts_;
};

} // namespace dubrix
