#include "screens/applications/ALApplicationTableDataSource.h"

#include "controls/ApplicationIconProvider.h"
#include "screens/Outlets.h"

#include <algorithm>

namespace dubrix {

ALApplicationTableDataSource::ALApplicationTableDataSource(const ApplicationList& list,
                                                           Loading loading)
    : list_(list),
      how_(loading) {}

ALApplicationTableDataSource::~ALApplicationTableDataSource() {
    if (reader_.joinable())
        reader_.join();
}

void ALApplicationTableDataSource::setSectionDescriptors(
    std::vector<ALSectionDescriptor> descriptors) {
    descriptors_ = std::move(descriptors);
}

void ALApplicationTableDataSource::setTableView(TableView* table) {
    table_ = table;
    if (table)
        load();
}

void ALApplicationTableDataSource::load() {
    if (how_ == Loading::AtOnce)
        return show(applicationSections(list_.entries(), descriptors_));
    if (reader_.joinable())
        reader_.join();
    loading_ = true;
    Q_EMIT rowsChanged();
    reader_ = std::thread([this, descriptors = descriptors_] {
        auto sections = applicationSections(list_.entries(), descriptors);
        QMetaObject::invokeMethod(
            this, [this, read = std::move(sections)]() mutable { show(std::move(read)); },
            Qt::QueuedConnection);
    });
}

void ALApplicationTableDataSource::show(std::vector<ApplicationSection> sections) {
    loading_ = false;
    beginResetModel();
    sections_ = std::move(sections);
    filter();
    endResetModel();
    Q_EMIT rowsChanged();
    if (table_)
        table_->reloadData();
}

void ALApplicationTableDataSource::setSearchText(const QString& text) {
    const QString folded = foldedForSearch(text);
    if (folded == search_)
        return;
    beginResetModel();
    search_ = folded;
    filter();
    endResetModel();
    Q_EMIT rowsChanged();
}

void ALApplicationTableDataSource::filter() {
    shown_.clear();
    for (std::size_t section = 0; section < sections_.size(); ++section) {
        int row = 0;
        for (const ApplicationRow& application : sections_[section].rows)
            if (matchesSearch(application, search_))
                shown_.push_back({static_cast<int>(section), row++, &application});
    }
}

void ALApplicationTableDataSource::setCheckedIdentifier(std::optional<std::string> identifier) {
    checked_ = std::move(identifier);
    if (!shown_.empty())
        Q_EMIT dataChanged(index(0), index(rowCount() - 1), {CheckedRole});
}

bool ALApplicationTableDataSource::hasApplications() const {
    return std::ranges::any_of(
        sections_, [](const ApplicationSection& section) { return !section.rows.empty(); });
}

int ALApplicationTableDataSource::tableViewNumberOfRowsInSection(int section) const {
    return static_cast<int>(std::ranges::count(shown_, section, &Shown::section));
}

QString ALApplicationTableDataSource::tableViewTitleForHeaderInSection(int section) const {
    return section >= 0 && section < numberOfSectionsInTableView()
               ? sections_[static_cast<std::size_t>(section)].title
               : QString();
}

const ApplicationRow* ALApplicationTableDataSource::applicationAt(int section, int row) const {
    const auto found = std::ranges::find_if(shown_, [section, row](const Shown& shown) {
        return shown.section == section && shown.row == row;
    });
    return found != shown_.end() ? found->application : nullptr;
}

std::optional<std::string>
ALApplicationTableDataSource::displayIdentifierForIndexPath(int section, int row) const {
    const ApplicationRow* application = applicationAt(section, row);
    return application ? std::optional(application->displayIdentifier) : std::nullopt;
}

QString ALApplicationTableDataSource::displayNameForIndexPath(int section, int row) const {
    const ApplicationRow* application = applicationAt(section, row);
    return application ? application->name : QString();
}

int ALApplicationTableDataSource::checkedRow() const {
    const auto found =
        std::ranges::find_if(shown_, [this](const Shown& shown) { return isChecked(shown); });
    return found != shown_.end() ? static_cast<int>(found - shown_.begin()) : -1;
}

bool ALApplicationTableDataSource::isChecked(const Shown& shown) const {
    return sections_[static_cast<std::size_t>(shown.section)].hasChecks && checked_ &&
           *checked_ == shown.application->displayIdentifier;
}

int ALApplicationTableDataSource::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(shown_.size());
}

QVariant ALApplicationTableDataSource::data(const QModelIndex& index, int role) const {
    const std::size_t place = static_cast<std::size_t>(index.row());
    if (!index.isValid() || place >= shown_.size())
        return {};
    const Shown& shown = shown_[place];
    switch (role) {
    case Qt::DisplayRole:
    case NameRole:
        return shown.application->name;
    case DetailRole:
        return shown.application->distinction;
    case CheckedRole:
        return isChecked(shown);
    case IconRole:
        return ApplicationIconProvider::addressFor(shown.application->bundlePath);
    case IconSizeRole:
        return sections_[static_cast<std::size_t>(shown.section)].iconSize;
    case SectionRole:
        return shown.section;
    case RowRole:
        return shown.row;
    case LastRole:
        return place + 1 == shown_.size() || shown_[place + 1].section != shown.section;
    default:
        return {};
    }
}

QHash<int, QByteArray> ALApplicationTableDataSource::roleNames() const {
    return {{NameRole, "name"},    {DetailRole, "detail"},     {CheckedRole, "checked"},
            {IconRole, "picture"}, {IconSizeRole, "iconSize"}, {SectionRole, "section"},
            {RowRole, "row"},      {LastRole, "last"}};
}

} // namespace dubrix
