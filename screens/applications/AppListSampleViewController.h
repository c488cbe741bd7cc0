#pragma once

#include "engine/DXShared.h"
#include "platform/Platform.h"
#include "screens/Outlets.h"
#include "screens/ViewController.h"
#include "screens/applications/ALApplicationTableDataSource.h"

#include <memory>

namespace dubrix {

class NotificationCenter;
class PrefsViewController;

/// The application picker: a modal screen on which the user chooses the application to duplicate.
/// The choice is stored and posted as "lblUpdate"; duplicates are listed like any other.
class AppListSampleViewController final : public dubrix::ViewController {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the application")
    Q_PROPERTY(dubrix::TableView* tableView READ tableViewOutlet CONSTANT)
    Q_PROPERTY(dubrix::TextField* searchField READ searchFieldOutlet CONSTANT)
    Q_PROPERTY(dubrix::ALApplicationTableDataSource* dataSource READ dataSource CONSTANT)
    /// What stands in place of the rows while there are none; empty otherwise.
    Q_PROPERTY(QString emptyTitle READ emptyTitle NOTIFY emptinessChanged)
    Q_PROPERTY(QString emptyMessage READ emptyMessage NOTIFY emptinessChanged)

public:
    using Loading = ALApplicationTableDataSource::Loading;

    AppListSampleViewController(const Platform& platform, NotificationCenter& notifications,
                                Loading loading = Loading::InBackground);
    ~AppListSampleViewController() override;

    QString layout() const override { return QStringLiteral("AppListView.qml"); }
    bool shouldAutorotateToInterfaceOrientation(unsigned /*orientation*/) const { return true; }

    /// Stores the application of the row, posts "lblUpdate" and dismisses the picker. Ignored where
    /// there is no row.
    Q_INVOKABLE void tableViewDidSelectRowAtIndexPath(int section, int row);
    /// Dismisses the picker; nothing is stored or posted.
    void cancelTapped();
    Q_INVOKABLE void searchFieldChanged(const QString& text);

    QString emptyTitle() const;
    QString emptyMessage() const;

    ALApplicationTableDataSource* dataSource() { return &dataSource_; }

    TableView tableView;
    TextField searchField;
    /// Made when the view loads, as is a main screen of its own, which is never shown.
    std::unique_ptr<DXShared> sharedClass;
    std::unique_ptr<PrefsViewController> prefsView;

Q_SIGNALS:
    void emptinessChanged();

protected:
    void viewDidLoad() override;

private:
    enum class Emptiness { None, NoApplications, NoMatch };

    void viewDidUnload();
    Emptiness emptiness() const;
    TableView* tableViewOutlet() { return &tableView; }
    TextField* searchFieldOutlet() { return &searchField; }

    const Platform platform_;
    NotificationCenter& notifications_;
    ALApplicationTableDataSource dataSource_;
};

} // namespace dubrix
