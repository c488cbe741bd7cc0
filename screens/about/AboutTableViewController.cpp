#include "screens/about/AboutTableViewController.h"

#include "engine/Endpoints.h"
#include "engine/Text.h"
#include "formats/lists/PropertyList.h"
#include "platform/HelpPages.h"
#include "platform/SystemLog.h"
#include "platform/UrlOpener.h"
#include "screens/about/QVWebViewController.h"
#include "screens/containers/NavigationController.h"

#include <array>

namespace dubrix {

namespace {

constexpr std::string_view handle = "iQ7r2m";

struct SocialClient {
    std::string_view scheme;
    std::string_view profile;
};

/// In the order of preference. The last has two slashes where the others have three.
constexpr std::array socialClients = {
    SocialClient{"tweetbot:", "tweetbot:///user_profile/"},
    SocialClient{"twitterrific:", "twitterrific:///profile?screen_name="},
    SocialClient{"tweetings:", "tweetings:///user?screen_name="},
    SocialClient{"twitter:", "twitter://user?screen_name="},
};

std::string joined(std::string_view first, std::string_view second) {
    return std::string(first).append(second);
}

} // namespace

void AboutTableViewController::viewDidLoad() {
    ViewController::viewDidLoad();
    aboutTable.setContentInset({0, 0, 0, 20});
    const std::string version =
        stringWithFormat("Version %@", services_.infoDictionary.stringForKey("CFBundleVersion"));
    versionString.setText(QString::fromStdString(version));
}

int AboutTableViewController::tableViewNumberOfRowsInSection(int section) const {
    if (section == 0)
        return 2;
    return section == 1 ? 3 : 0;
}

void AboutTableViewController::tableViewDidSelectRowAtIndexPath(int section, int row) {
    services_.log.log(stringWithFormat("\nindexPath.row %ld \nindex.section %ld \n", row, section));
    aboutTable.selectRow(section, row);
    if (section == 0 && row == 0) {
        twitter();
        aboutTable.deselectRow(false);
    } else if (section == 0 && row == 1) {
        donate();
        aboutTable.deselectRow(false);
    } else if (section == 1 && row == 0) {
        pushHelpPage("/pages/dubrix-instructions.php", "Instructions");
    } else if (section == 1 && row == 1) {
        pushHelpPage("/pages/dubrix-changelog.php", "Changelog");
    } else if (section == 1 && row == 2) {
        pushHelpPage("/pages/dubrix-faqcredits.php", "Credits & FAQ");
    }
}

void AboutTableViewController::pushHelpPage(const std::string& path, const std::string& title) {
    auto page = std::make_unique<QVWebViewController>();
    page->setURL(services_.help.siteAddress() + path, title);
    page->setHidesBottomBarWhenPushed(true);
    if (navigationController())
        navigationController()->pushViewController(std::move(page));
}

void AboutTableViewController::twitter() {
    for (const SocialClient& client : socialClients)
        if (services_.urls.canOpenURL(std::string(client.scheme)))
            return services_.urls.openURL(joined(client.profile, handle));
    services_.urls.openURL(joined(endpoints::profileAddress, handle));
}

void AboutTableViewController::donate() {
    services_.urls.openURL(stringWithFormat(
        "https://%@/cgi-bin/webscr?cmd=_s-xclick&hosted_button_id=%@",
        std::string(endpoints::paymentHost), std::string(endpoints::donationButton)));
}

void AboutTableViewController::mail() {
    services_.urls.openURL(joined("mailto:", endpoints::supportAddress) +
                           "?subject=Lorvane%20(1.2)%20Support");
}

} // namespace dubrix
