#pragma once

#include "screens/applications/ApplicationSections.h"

#include <QAbstractListModel>
#include <QPointer>
#include <optional>
#include <qqmlregistration.h>
#include <string>
#include <thread>
#include <vector>

namespace dubrix {

class TableView;

/// Fills a table with applications, as its section descriptors ask. As a list model it gives the
/// rows of all sections one after the other; only rows that match the search count anywhere.
class ALApplicationTableDataSource : public QAbstractListModel {
    Q_OBJECT
    QML_ANONYMOUS
    Q_PROPERTY(bool loading READ isLoading NOTIFY rowsChanged)
    /// The first row that bears the check mark, counted over all sections; -1 without one.
    Q_PROPERTY(int checkedRow READ checkedRow NOTIFY rowsChanged)

public:
    enum Role {
        NameRole = Qt::UserRole,
        DetailRole,
        CheckedRole,
        IconRole,
        IconSizeRole,
        SectionRole,
        RowRole,
        LastRole
    };

    /// Whether the applications are read while the caller waits or on another thread.
    enum class Loading { AtOnce, InBackground };

    /// `list` outlives the data source.
    explicit ALApplicationTableDataSource(const ApplicationList& list,
                                          Loading loading = Loading::InBackground);
    /// Waits for a reading that is under way.
    ~ALApplicationTableDataSource() override;

    void setSectionDescriptors(std::vector<ALSectionDescriptor> descriptors);
    /// Binds the data source to the table that it fills and reads the applications; null lets go
    /// of the table.
    void setTableView(TableView* table);
    /// The application whose row bears the check mark.
    void setCheckedIdentifier(std::optional<std::string> identifier);
    /// Leaves the rows whose name or identifier has every word of `text`, without regard to case
    /// and accents; all of them for an empty one.
    void setSearchText(const QString& text);

    bool isLoading() const { return loading_; }
    /// Whether there is any application, matching the search or not.
    bool hasApplications() const;

    int numberOfSectionsInTableView() const { return static_cast<int>(sections_.size()); }
    int tableViewNumberOfRowsInSection(int section) const;
    /// Empty for a section that is not there.
    Q_INVOKABLE QString tableViewTitleForHeaderInSection(int section) const;
    /// The application shown in a row; nothing where there is no row.
    std::optional<std::string> displayIdentifierForIndexPath(int section, int row) const;
    /// The display name shown in a row; empty where there is no row.
    QString displayNameForIndexPath(int section, int row) const;
    int checkedRow() const;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    /// Other rows are shown, or `loading` has changed.
    void rowsChanged();

private:
    struct Shown {
        int section;
        int row; ///< among those shown of the section
        const ApplicationRow* application;
    };

    void load();
    void show(std::vector<ApplicationSection> sections);
    void filter();
    bool isChecked(const Shown& shown) const;
    /// Null where there is no row.
    const ApplicationRow* applicationAt(int section, int row) const;

    const ApplicationList& list_;
    const Loading how_;
    std::vector<ALSectionDescriptor> descriptors_;
    QPointer<TableView> table_;
    std::vector<ApplicationSection> sections_;
    std::vector<Shown> shown_;
    QString search_;
    std::optional<std::string> checked_;
    bool loading_ = false;
    std::thread reader_;
};

} // namespace dubrix
