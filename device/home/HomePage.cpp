#include "device/home/HomePage.h"

#include "controls/ApplicationIconProvider.h"

#include <QtQml/qqmlextensionplugin.h>
#include <algorithm>
#include <utility>

// Whoever links the layout links what it is made of.
Q_IMPORT_QML_PLUGIN(DubrixControlsPlugin)

namespace dubrix {

void HomePage::setApplications(HomeApplications* applications) {
    if (applications_ == applications)
        return;
    if (applications_)
        applications_->disconnect(this);
    applications_ = applications;
    if (applications_)
        connect(applications_, &HomeApplications::changed, this, &HomePage::update);
    update();
    Q_EMIT placeChanged();
}

void HomePage::setPage(int page) {
    if (page != std::exchange(page_, page)) {
        update();
        Q_EMIT placeChanged();
    }
}

void HomePage::setCapacity(int capacity) {
    if (capacity != std::exchange(capacity_, capacity)) {
        update();
        Q_EMIT placeChanged();
    }
}

void HomePage::dropRows(int first, int end) {
    if (first == end)
        return;
    beginRemoveRows({}, first, end - 1);
    rows_.erase(rows_.begin() + first, rows_.begin() + end);
    endRemoveRows();
}

/// Brings the application into `row`, where it either is already or is new.
void HomePage::place(const HomeApplication& application, int row, int slot) {
    const auto index = static_cast<std::size_t>(row);
    if (index < rows_.size() && !rows_[index].leaving &&
        rows_[index].application.identifier == application.identifier) {
        Row& known = rows_[index];
        if (std::exchange(known.slot, slot) != slot || known.application != application) {
            known.application = application;
            Q_EMIT dataChanged(this->index(row), this->index(row));
        }
        return;
    }
    beginInsertRows({}, row, row);
    rows_.insert(rows_.begin() + row,
                 {application, slot, false, applications_->takeArrival(application.identifier)});
    endInsertRows();
}

void HomePage::update() {
    // A page on its way out has a number below 0.
    const bool known = applications_ && capacity_ > 0 && page_ >= 0;
    const int count = known ? applications_->count() : 0;
    const int begin = known ? std::min(page_ * capacity_, count) : 0;
    const int end = known ? std::min(begin + capacity_, count) : 0;
    int next = begin;
    int row = 0;
    while (row < static_cast<int>(rows_.size()) || next < end) {
        if (row == static_cast<int>(rows_.size())) {
            place(applications_->all()[static_cast<std::size_t>(next)], row, next - begin);
            ++next, ++row;
            continue;
        }
        Row& here = rows_[static_cast<std::size_t>(row)];
        const int position = known ? applications_->positionOf(here.application.identifier) : -1;
        if (here.leaving) {
            ++row;
        } else if (position >= next && position < end) {
            // Those that come before it are new here.
            for (; next <= position; ++next, ++row)
                place(applications_->all()[static_cast<std::size_t>(next)], row, next - begin);
        } else if (position < 0 && known) {
            here.leaving = true;
            Q_EMIT dataChanged(index(row), index(row), {LeavingRole});
            ++row;
        } else {
            dropRows(row, row + 1);
        }
    }
}

void HomePage::gone(const QString& identifier) {
    const auto found = std::ranges::find_if(rows_, [&](const Row& row) {
        return row.leaving && row.application.identifier == identifier;
    });
    if (found != rows_.end()) {
        const int row = static_cast<int>(found - rows_.begin());
        dropRows(row, row + 1);
    }
}

int HomePage::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant HomePage::data(const QModelIndex& index, int role) const {
    const auto place = static_cast<std::size_t>(index.row());
    if (!index.isValid() || place >= rows_.size())
        return {};
    const Row& row = rows_[place];
    switch (role) {
    case IdentifierRole:
        return row.application.identifier;
    case Qt::DisplayRole:
    case NameRole:
        return row.application.name;
    case IconRole:
        return ApplicationIconProvider::addressFor(row.application.folder);
    case SlotRole:
        return row.slot;
    case LeavingRole:
        return row.leaving;
    case ArrivingRole:
        return row.arriving;
    default:
        return {};
    }
}

QHash<int, QByteArray> HomePage::roleNames() const {
    return {{IdentifierRole, "identifier"}, {NameRole, "name"},
            {IconRole, "picture"},          {SlotRole, "slot"},
            {LeavingRole, "leaving"},       {ArrivingRole, "arriving"}};
}

} // namespace dubrix
