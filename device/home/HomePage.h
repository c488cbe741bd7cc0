#pragma once

#include "device/home/HomeApplications.h"

#include <QAbstractListModel>
#include <QPointer>
#include <vector>

namespace dubrix {

/// The applications on one page of the home screen. Rows follow the list as it changes, each
/// keeping its identity: a row moves to another slot, comes, or, when its application has been
/// removed from the device, stays as a leaving one until the layout has shown that and says so.
class HomePage : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(dubrix::HomeApplications* applications READ applications WRITE setApplications NOTIFY
                   placeChanged)
    /// Which page, counted from 0.
    Q_PROPERTY(int page READ page WRITE setPage NOTIFY placeChanged)
    /// How many icons a page holds; 0 as long as that is not known.
    Q_PROPERTY(int capacity READ capacity WRITE setCapacity NOTIFY placeChanged)

public:
    using QAbstractListModel::QAbstractListModel;

    enum Role {
        IdentifierRole = Qt::UserRole,
        NameRole,
        IconRole,
        SlotRole,
        LeavingRole,
        ArrivingRole
    };

    HomeApplications* applications() const { return applications_; }
    int page() const { return page_; }
    int capacity() const { return capacity_; }
    void setApplications(HomeApplications* applications);
    void setPage(int page);
    void setCapacity(int capacity);

    /// The layout has shown how this application left.
    Q_INVOKABLE void gone(const QString& identifier);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void placeChanged();

private:
    struct Row {
        HomeApplication application;
        int slot = 0;
        bool leaving = false;
        bool arriving = false;
    };

    void update();
    void dropRows(int first, int end);
    void place(const HomeApplication& application, int row, int slot);

    QPointer<HomeApplications> applications_;
    int page_ = 0;
    int capacity_ = 0;
    std::vector<Row> rows_;
};

} // namespace dubrix
