#include "screens/containers/NavigationController.h"
#include "screens/prefs/PrefsViewController.h"
#include "tests/screens/PickerDevice.h"
#include "tests/support/StoredText.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QPointer>
#include <future>

namespace dubrix {

using Source = ALApplicationTableDataSource;

class AppListTest : public PickerDevice {
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
    static std::string value(const Source& source, int row, int role) {
        return source.data(source.index(row), role).toString().toStdString();
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
    installSystemApplication("system", "Settings");
    const Source& source = *open().dataSource();
    EXPECT_EQ(namesIn(source), QStringList({"Äpfel", "Birne", "named.by.identifier", "Notes 2",
                                            "notes 10", "Twin", "Twin", "zebra"}));
    EXPECT_EQ(value(source, 5, Source::DetailRole), "same.1");
    EXPECT_EQ(value(source, 6, Source::DetailRole), "same.2");
    EXPECT_EQ(value(source, 7, Source::DetailRole), "");
    EXPECT_EQ(value(source, 0, Source::IconSizeRole), "29");
    EXPECT_EQ(source.tableViewTitleForHeaderInSection(0),
              "Select only original app and not a duplicate");
    EXPECT_EQ(source.tableViewTitleForHeaderInSection(1) +
                  source.tableViewTitleForHeaderInSection(-1),
              "");
    EXPECT_EQ(source.displayIdentifierForIndexPath(0, 3), "b");
    EXPECT_EQ(source.displayIdentifierForIndexPath(0, 8), std::nullopt);
    EXPECT_EQ(source.displayIdentifierForIndexPath(1, 0), std::nullopt);
}

TEST_F(AppListTest, SectionsFollowTheirDescriptors) {
    const std::vector<ApplicationList::Entry> entries = {
        {"user", "User", "/u", false, false},
        {"hidden", "Hidden", "/h", false, true},
        {"system", "System", "/s", true, false},
    };
    const struct {
        const char* predicate;
        bool suppressHidden;
        const char* names;
    } cases[] = {
        {"isSystemApplication = FALSE", true, "User"},
        {"isSystemApplication = FALSE", false, "Hidden User"},
        {" isSystemApplication==true ", true, "System"},
        {"", true, "System User"},
        {"name = 'User'", true, ""},
    };
    std::vector<ALSectionDescriptor> descriptors;
    for (const auto& [predicate, suppressHidden, names] : cases)
        descriptors.push_back({{ALSectionDescriptorPredicateKey, predicate},
                               {ALSectionDescriptorSuppressHiddenAppsKey, suppressHidden}});
    const auto sections = applicationSections(entries, descriptors);
    ASSERT_EQ(sections.size(), std::size(cases));
    for (std::size_t index = 0; index < sections.size(); ++index) {
        QStringList names;
        for (const ApplicationRow& row : sections[index].rows)
            names += row.name;
        EXPECT_EQ(names.join(' '), cases[index].names) << index;
        EXPECT_FALSE(sections[index].hasChecks);
    }
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
        {"acme note", {"Café Notes"}},
        {"STRASSE", {"Straße 7"}},
        {"acme straße", {}},
        {" ", {"Budget", "Café Notes", "Straße 7"}},
    };
    for (const auto& [text, names] : cases) {
        picker.searchFieldChanged(text);
        EXPECT_EQ(namesIn(*picker.dataSource()), names) << text;
        EXPECT_EQ(picker.emptyTitle().isEmpty(), !names.isEmpty()) << text;
        EXPECT_EQ(picker.dataSource()->tableViewNumberOfRowsInSection(0), names.size());
    }
    // A row is what is shown in it, search or not.
    picker.searchFieldChanged("notes");
    picker.tableViewDidSelectRowAtIndexPath(0, 0);
    EXPECT_EQ(screen.appNameLabel.text(), "Café Notes");
}

TEST_F(AppListTest, ChoosingStoresInOrderTellsAndDismisses) {
    install("com.acme.notes", "Notes");
    install("com.acme.notes1", "Notes 1");
    AppListSampleViewController& picker = open();
    EXPECT_EQ(picker.title(), "Select Application");
    EXPECT_EQ(picker.leftBarButton(), "Cancel");
    QStringList told;
    QObject witness;
    notifications.addObserver(witness, "lblUpdate", [&] {
        told += screen.appNameLabel.text() + (modals.occupied() ? " while open" : " too late");
    });
    log.lines.clear();
    picker.tableViewDidSelectRowAtIndexPath(0, 1);
    EXPECT_EQ(log.lines,
              (std::vector<std::string>{
                  "al.applications: {\n    \"com.acme.notes\" = Notes;\n    \"com.acme.notes1\" = "
                  "\"Notes 1\";\n}",
                  "Adding Object: com.acme.notes1 - For Key bundleID", "Wrote to file successfully",
                  "Adding Object: Notes 1 - For Key appName", "Wrote to file successfully"}));
    EXPECT_EQ(told, QStringList("Notes 1 while open"));
    EXPECT_FALSE(modals.occupied());
    EXPECT_EQ(picker.tableView.selectedRow(), -1);
    EXPECT_TRUE(picker.tableView.selectionAnimated());

    const Source& reopened = *open().dataSource();
    EXPECT_EQ(value(reopened, 0, Source::CheckedRole), "false");
    EXPECT_EQ(value(reopened, 1, Source::CheckedRole), "true");
}

TEST_F(AppListTest, AnApplicationRemovedMeanwhileIsStoredUnderTheNameThatWasShown) {
    install("gone", "Gone");
    storeText(files, log, "appName", "Before");
    AppListSampleViewController& picker = open();
    ASSERT_TRUE(static_cast<bool>(registry.strike("gone")));
    picker.tableViewDidSelectRowAtIndexPath(0, 0);
    EXPECT_EQ(storedText(files, log, "bundleID"), "gone");
    EXPECT_EQ(storedText(files, log, "appName"), "Gone");
    EXPECT_FALSE(modals.occupied());
}

TEST_F(AppListTest, CancelAndRowsThatAreNotThereStoreNothing) {
    install("a", "A");
    int posted = 0;
    notifications.addObserver(screen, "lblUpdate", [&posted] { ++posted; });
    AppListSampleViewController& picker = open();
    picker.tableViewDidSelectRowAtIndexPath(0, 1);
    picker.tableViewDidSelectRowAtIndexPath(-1, 0);
    EXPECT_TRUE(modals.occupied());
    picker.cancelTapped();
    EXPECT_FALSE(modals.occupied());
    EXPECT_EQ(posted, 0);
    EXPECT_FALSE(std::filesystem::exists(folder / "var/mobile/Library/Preferences/"
                                                  "com.q7r2m.dubrix2.plist"));
}

TEST_F(AppListTest, TheMainScreenPresentsThePickerInANavigation) {
    screen.setModalStack(&modals);
    screen.loadViewIfNeeded();
    screen.tableViewDidSelectRowAtIndexPath(0, 0);
    auto* navigation = dynamic_cast<NavigationController*>(modals.topmost());
    ASSERT_TRUE(navigation);
    auto* picker = dynamic_cast<AppListSampleViewController*>(navigation->topViewController());
    ASSERT_TRUE(picker);
    EXPECT_EQ(screen.prefTable.selectedRow(), 0);
    QEventLoop loop;
    QObject::connect(picker, &AppListSampleViewController::emptinessChanged, &loop,
                     &QEventLoop::quit);
    EXPECT_EQ(picker->emptyTitle(), "") << "while it reads";
    loop.exec();
    EXPECT_EQ(picker->emptyTitle(), "No Applications");
    EXPECT_TRUE(picker->emptyMessage().contains("dubrix install"));
    navigation->topViewController()->tapLeftBarButton();
    QCoreApplication::processEvents();
    EXPECT_FALSE(modals.occupied());
    EXPECT_EQ(screen.prefTable.selectedRow(), -1);
}

TEST_F(AppListTest, ABackgroundReadingMayOutlastTheScreen) {
    struct SlowList final : ApplicationList {
        std::optional<std::string> valueForKey(std::string_view,
                                               const std::string&) const override {
            return std::nullopt;
        }
        std::map<std::string, std::string> applications() const override { return {}; }
        std::vector<Entry> entries() const override {
            begun.set_value();
            go.wait();
            return {{"a", "A", "/a", false, false}};
        }
        mutable std::promise<void> begun;
        std::shared_future<void> go;
    };
    for (const bool cancelled : {false, true}) {
        std::promise<void> go;
        SlowList list;
        list.go = go.get_future();
        TableView table;
        auto source = std::make_unique<Source>(list);
        source->setSectionDescriptors({{}});
        source->setTableView(&table);
        list.begun.get_future().wait();
        EXPECT_TRUE(source->isLoading());
        EXPECT_EQ(source->rowCount(), 0);
        go.set_value();
        if (cancelled) {
            source.reset();
            QCoreApplication::processEvents();
            continue;
        }
        QEventLoop loop;
        QObject::connect(source.get(), &Source::rowsChanged, &loop, &QEventLoop::quit);
        loop.exec();
        EXPECT_FALSE(source->isLoading());
        EXPECT_EQ(namesIn(*source), QStringList("A"));
    }
}

TEST(NotificationCenterTest, CallsObserversOfTheNameWhileTheyLive) {
    NotificationCenter center;
    std::string calls;
    QObject first;
    auto second = std::make_unique<QObject>();
    center.addObserver(first, "a", [&] {
        calls += "1";
        second.reset();
        center.addObserver(first, "a", [&calls] { calls += "3"; });
    });
    center.addObserver(*second, "a", [&calls] { calls += "2"; });
    center.addObserver(first, "b", [&calls] { calls += "b"; });
    center.postNotificationName("a");
    EXPECT_EQ(calls, "1");
    center.postNotificationName("c");
    center.postNotificationName("b");
    EXPECT_EQ(calls, "1b");
}

} // namespace dubrix
