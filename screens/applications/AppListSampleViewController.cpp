#include "screens/applications/AppListSampleViewController.h"

#include "engine/Text.h"
#include "formats/lists/PropertyList.h"
#include "platform/ApplicationList.h"
#include "platform/SystemLog.h"
#include "screens/NotificationCenter.h"
#include "screens/prefs/PrefsViewController.h"

namespace dubrix {

namespace {

std::string descriptionOf(const std::map<std::string, std::string>& applications) {
    PropertyList dictionary = PropertyList::dictionary();
    for (const auto& [identifier, name] : applications)
        dictionary.setValueForKey(identifier, PropertyList::string(name));
    return dictionary.description();
}

} // namespace

AppListSampleViewController::AppListSampleViewController(const Platform& platform,
                                                         NotificationCenter& notifications,
                                                         Loading loading)
    : platform_(platform),
      notifications_(notifications),
      dataSource_(platform.applications, loading) {
    dataSource_.setSectionDescriptors({{
        {ALSectionDescriptorPredicateKey, QStringLiteral("isSystemApplication = FALSE")},
        {ALSectionDescriptorTitleKey,
         QStringLiteral("Select only original app and not a duplicate")},
        {ALSectionDescriptorCellClassNameKey, QStringLiteral("ALCheckCell")},
        {ALSectionDescriptorIconSizeKey, 29U},
        {ALSectionDescriptorSuppressHiddenAppsKey, true},
    }});
    connect(&dataSource_, &ALApplicationTableDataSource::rowsChanged, this,
            &AppListSampleViewController::emptinessChanged);
}

AppListSampleViewController::~AppListSampleViewController() {
    viewDidUnload();
}

void AppListSampleViewController::viewDidLoad() {
    ViewController::viewDidLoad();
    dataSource_.setTableView(&tableView);
    sharedClass = std::make_unique<DXShared>(platform_.files, platform_.log);
    prefsView = std::make_unique<PrefsViewController>(platform_, notifications_);
    setLeftBarButtonItem(SystemItem::Cancel, [this] { cancelTapped(); });
    setTitle(QStringLiteral("Select Application"));
    if (const auto chosen = sharedClass->retrieveValueForKey("bundleID"))
        dataSource_.setCheckedIdentifier(chosen->stringValue());
}

void AppListSampleViewController::viewDidUnload() {
    dataSource_.setTableView(nullptr);
}

void AppListSampleViewController::tableViewDidSelectRowAtIndexPath(int section, int row) {
    tableView.selectRow(section, row);
    tableView.deselectRow(true);
    const auto identifier = dataSource_.displayIdentifierForIndexPath(section, row);
    if (!identifier)
        return;
    const auto applications = platform_.applications.applications();
    platform_.log.log(stringWithFormat("al.applications: %@", descriptionOf(applications)));
    sharedClass->addKey("bundleID", PropertyList::string(*identifier));
    // An application that has gone meanwhile goes by the name that its row still shows.
    const auto listed = applications.find(*identifier);
    sharedClass->addKey("appName",
                        PropertyList::string(
                            listed != applications.end()
                                ? listed->second
                                : dataSource_.displayNameForIndexPath(section, row).toStdString()));
    dataSource_.setCheckedIdentifier(identifier);
    notifications_.postNotificationName("lblUpdate");
    dismissViewController(true);
}

void AppListSampleViewController::cancelTapped() {
    dismissViewController(true);
}

void AppListSampleViewController::searchFieldChanged(const QString& text) {
    searchField.setText(text);
    dataSource_.setSearchText(text);
}

AppListSampleViewController::Emptiness AppListSampleViewController::emptiness() const {
    if (dataSource_.isLoading() || dataSource_.rowCount() > 0)
        return Emptiness::None;
    return dataSource_.hasApplications() ? Emptiness::NoMatch : Emptiness::NoApplications;
}

QString AppListSampleViewController::emptyTitle() const {
    switch (emptiness()) {
    case Emptiness::NoApplications:
        return tr("No Applications");
    case Emptiness::NoMatch:
        return tr("No Results");
    case Emptiness::None:
        break;
    }
    return {};
}

QString AppListSampleViewController::emptyMessage() const {
    switch (emptiness()) {
    case Emptiness::NoApplications:
        return tr("Install one on the device with\ndubrix install FILE.ipa\n"
                  "and open this list again.");
    case Emptiness::NoMatch:
        return tr("No application has “%1” in its name or identifier.")
            .arg(searchField.text().trimmed());
    case Emptiness::None:
        break;
    }
    return {};
}

} // namespace dubrix
