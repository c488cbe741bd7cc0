#pragma once

#include "screens/Outlets.h"
#include "screens/ViewController.h"

#include <string>

namespace dubrix {

class HelpPages;
class PropertyList;
class SystemLog;
class UrlOpener;

/// What the about screen asks of its platform. The objects outlive the screen.
struct AboutServices {
    SystemLog& log;
    UrlOpener& urls;
    HelpPages& help;
    /// The application's own Info.plist.
    const PropertyList& infoDictionary;
};

/// The about screen: the application's version, two rows that lead out of the application and
/// three that open help pages in it.
class AboutTableViewController : public ViewController {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the application")
    Q_PROPERTY(dubrix::Label* versionString READ versionStringOutlet CONSTANT)
    Q_PROPERTY(dubrix::TableView* aboutTable READ aboutTableOutlet CONSTANT)

public:
    explicit AboutTableViewController(const AboutServices& services) : services_(services) {}

    QString layout() const override { return QStringLiteral("AboutView.qml"); }

    /// Two sections with 2 and 3 rows; 0 rows for any other section.
    Q_INVOKABLE int numberOfSectionsInTableView() const { return 2; }
    Q_INVOKABLE int tableViewNumberOfRowsInSection(int section) const;
    Q_INVOKABLE void tableViewDidSelectRowAtIndexPath(int section, int row);

    /// Opens the maker's profile in the first of four social clients that is installed, or on the
    /// web.
    void twitter();
    /// Opens the payment service's donation page.
    void donate();
    /// Opens a mail to the support. No row does.
    void mail();

    void viewWillAppear() override { aboutTable.deselectRow(true); }

    Label versionString;
    TableView aboutTable;

protected:
    void viewDidLoad() override;

private:
    void pushHelpPage(const std::string& path, const std::string& title);

    Label* versionStringOutlet() { return &versionString; }
    TableView* aboutTableOutlet() { return &aboutTable; }

    const AboutServices services_;
};

} // namespace dubrix
