#include "screens/applications/AppListSampleViewController.h"
#include "screens/containers/NavigationController.h"
#include "screens/prefs/PrefsViewController.h"
#include "tests/screens/ScreenDevice.h"

#include <QSignalSpy>

namespace dubrix {

using Source = ALApplicationTableDataSource;

class AppListTest : public ScreenDevice {
protected:
    /// A picker with its list, presented like the main screen does it.
    AppListSampleViewController& open() {
        auto made = std::make_unique<AppListSampleViewController>(platform, notifications,
                                                                  Source::Loading::AtOnce);
        AppListSampleViewController& picker = *made;
        screen.setModalStack(&modals);
        screen.loadViewIfNeeded();
        screen.presentViewController(std::make_unique<NavigationController>(std::move(made)), true);
        return picker;
    }
    /// What is shown: names, with a star for what is checked and in brackets what tells twins
    /// apart.
    static QStringList rows(const Source& source) {
        QStringList rows;
        for (int row = 0; row < source.rowCount(); ++row) {
            const auto value = [&](int role) { return source.data(source.index(row), role); };
            const QString detail = value(Source::DetailRole).toString();
            rows += value(Source::NameRole).toString() +
                    (value(Source::CheckedRole).toBool() ? " *" : "") +
                    (detail.isEmpty() ? QString() : " [" + detail + "]");
        }
        return rows;
    }

    PrefsViewController screen{platform, notifications};
};

TEST_F(AppListTest, ListsUserApplicationsInPeoplesOrder) {
    install("z.first", "notes 10");
    install("b", "Notes 2");
    install("a", "zebra");
    install("c", "Äpfel");
    install("d", "Birne");
    install("same.2", "Twin");
    install("same.1", "Twin");
    install("named.by.identifier", "");
    install("hidden", "Invisible", "SBAppTags = (hidden);");
    putFile(folder / "Applications/S.app/Info.plist",
            "{CFBundleIdentifier = system; CFBundleDisplayName = Settings;}");
    choose("{bundleID = b;}");
    const Source& source = *open().dataSource();
    EXPECT_EQ(rows(source), QStringList({"Äpfel", "Birne", "named.by.identifier", "Notes 2 *",
                                         "notes 10", "Twin [same.1]", "Twin [same.2]", "zebra"}));
    EXPECT_EQ(source.checkedRow(), 3);
    EXPECT_EQ(source.tableViewTitleForHeaderInSection(0),
              "Select only original app and not a duplicate");
    for (const auto& [section, row] : {std::pair{0, 8}, {0, -1}, {1, 0}, {-1, 0}})
        EXPECT_EQ(source.displayIdentifierForIndexPath(section, row), std::nullopt);
    EXPECT_EQ(source.tableViewTitleForHeaderInSection(1) +
                  source.tableViewTitleForHeaderInSection(-1),
              "");
}

TEST_F(AppListTest, SectionsFollowTheirDescriptors) {
    const std::vector<ApplicationList::Entry> entries = {{"user", "User", "/u", false, false},
                                                         {"hidden", "Hidden", "/h", false, true},
                                                         {"system", "System", "/s", true, false}};
    QStringList names;
    for (const auto& [predicate, suppressHidden] : {std::pair{"isSystemApplication = FALSE", true},
                                                    {"isSystemApplication = NO", false},
                                                    {"isSystemApplication = 1", true},
                                                    {" isSystemApplication==true ", true},
                                                    {"", true},
                                                    {"name = 'User'", true}}) {
        const auto sections = applicationSections(
            entries, {{{ALSectionDescriptorPredicateKey, predicate},
                       {ALSectionDescriptorSuppressHiddenAppsKey, suppressHidden}}});
        ASSERT_EQ(sections.size(), 1U);
        EXPECT_FALSE(sections[0].hasChecks);
        names += "|";
        for (const ApplicationRow& row : sections[0].rows)
            names += row.name;
    }
    EXPECT_EQ(names.join(' '), "| User | Hidden User | System | System | System User |");

    install("a", "A");
    Source source(platform.applications, Source::Loading::AtOnce);
    TableView table;
    source.setSectionDescriptors({{}, {}});
    source.setTableView(&table);
    QString places;
    for (int row = 0; row < source.rowCount(); ++row)
        for (const int role : {Source::SectionRole, Source::RowRole, Source::LastRole})
            places += source.data(source.index(row), role).toString() + ' ';
    EXPECT_EQ(places, "0 0 true 1 0 true ");
    EXPECT_EQ(source.tableViewNumberOfRowsInSection(1), 1);
}

TEST_F(AppListTest, SearchLeavesWhatHasEveryWord) {
    install("com.acme.notes", "Café Notes");
    install("com.acme.budget", "Budget");
    install("org.other", "Straße 7");
    AppListSampleViewController& picker = open();
    const struct {
        const char* text;
        QStringList names;
    } cases[] = {
        {"cafe", {"Café Notes"}},
        {"CAFÉ  notes ", {"Café Notes"}},
        {"acme", {"Budget", "Café Notes"}},
        {"STRASSE", {"Straße 7"}},
        {"acme straße", {}},
        {" ", {"Budget", "Café Notes", "Straße 7"}},
        {"notes", {"Café Notes"}},
    };
    for (const auto& [text, names] : cases) {
        picker.searchFieldChanged(text);
        EXPECT_EQ(rows(*picker.dataSource()), names) << text;
        EXPECT_EQ(picker.emptyTitle(), names.isEmpty() ? "No Results" : "") << text;
        EXPECT_EQ(picker.emptyMessage().contains(text), names.isEmpty()) << text;
    }
    // A row is what is shown in it, search or not.
    picker.tableViewDidSelectRowAtIndexPath(0, 0);
    EXPECT_EQ(screen.appNameLabel.text(), "Café Notes");
}

TEST_F(AppListTest, ChoosingStoresInOrderTellsAndDismisses) {
    install("com.acme.notes", "Notes");
    install("com.acme.notes1", "Notes 1");
    AppListSampleViewController& picker = open();
    picker.tableViewDidSelectRowAtIndexPath(0, 2); // which is not there
    EXPECT_EQ(stored("bundleID"), "absent");
    QStringList told;
    QObject witness;
    notifications.addObserver(witness, "lblUpdate", [&] {
        told += screen.appNameLabel.text() + (modals.occupied() ? " while open" : " too late");
    });
    log.lines.clear();
    QString selected;
    QObject::connect(&picker.tableView, &TableView::selectionChanged, [&] {
        selected += QString::number(picker.tableView.selectedRow()) +
                    (picker.tableView.selectionAnimated() ? " slowly " : " at once ");
    });
    QObject::connect(picker.dataSource(), &Source::dataChanged, &picker,
                     [](const QModelIndex& first) { EXPECT_EQ(first.row(), 0); });
    picker.tableViewDidSelectRowAtIndexPath(0, 1);
    EXPECT_EQ(selected, "1 at once -1 slowly ");
    EXPECT_TRUE(log.lines.at(0).starts_with("al.applications: {\n    \"com.acme.notes\" = Notes;"));
    EXPECT_EQ(log.lines.at(1), "Adding Object: com.acme.notes1 - For Key bundleID");
    EXPECT_EQ(log.lines.at(3), "Adding Object: Notes 1 - For Key appName");
    EXPECT_EQ(told, QStringList("Notes 1 while open"));
    EXPECT_FALSE(modals.occupied());
    EXPECT_EQ(rows(*picker.dataSource()), QStringList({"Notes", "Notes 1 *"}));

    // One that has gone meanwhile is stored under the name that was shown.
    AppListSampleViewController& again = open();
    ASSERT_TRUE(static_cast<bool>(registry.strike("com.acme.notes")));
    again.tableViewDidSelectRowAtIndexPath(0, 0);
    EXPECT_EQ(stored("bundleID") + " " + stored("appName"), "com.acme.notes Notes");

    open().cancelTapped();
    EXPECT_FALSE(modals.occupied());
    EXPECT_EQ(told.size(), 2);
}

TEST_F(AppListTest, TheMainScreensPickerReadsBesideTheEventLoop) {
    {
        TableView table;
        Source gone(platform.applications);
        gone.setTableView(&table);
        EXPECT_TRUE(gone.isLoading());
    } // before it has read
    screen.setModalStack(&modals);
    screen.loadViewIfNeeded();
    screen.SelectAppTapped();
    auto* navigation = qobject_cast<NavigationController*>(modals.topmost());
    ASSERT_TRUE(navigation);
    auto& picker = static_cast<AppListSampleViewController&>(*navigation->topViewController());
    EXPECT_EQ(picker.emptyTitle(), "") << "while it reads";
    QSignalSpy read(&picker, &AppListSampleViewController::emptinessChanged);
    ASSERT_TRUE(read.wait());
    EXPECT_FALSE(picker.dataSource()->isLoading());
    EXPECT_EQ(picker.emptyTitle(), "No Applications");
    EXPECT_TRUE(picker.emptyMessage().contains("dubrix install"));
    picker.tapLeftBarButton();
    QCoreApplication::processEvents();
    EXPECT_FALSE(modals.occupied());
}

} // namespace dubrix
