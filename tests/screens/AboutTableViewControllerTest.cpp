#include "screens/about/AboutTableViewController.h"

#include "formats/lists/PropertyList.h"
#include "platform/HelpPages.h"
#include "platform/SystemLog.h"
#include "platform/UrlOpener.h"
#include "screens/about/QVWebViewController.h"
#include "screens/containers/NavigationController.h"
#include "screens/containers/TabBarController.h"

#include <gtest/gtest.h>
#include <set>

namespace dubrix {
namespace {

using Texts = std::vector<std::string>;

class RecordingUrlOpener final : public UrlOpener {
public:
    bool canOpenURL(const std::string& address) const override {
        asked.push_back(address);
        return installed.contains(address);
    }
    void openURL(const std::string& address) override { opened.push_back(address); }
    std::set<std::string> installed;
    mutable Texts asked;
    Texts opened;
};

class FixedHelpPages final : public HelpPages {
public:
    std::string siteAddress() override { return address; }
    std::string address = "http://help.example.org:8080";
};

class RecordingLog final : public SystemLog {
public:
    void log(const std::string& text) override { lines.push_back(text); }
    Texts lines;
};

PropertyList withVersions() {
    PropertyList info = PropertyList::dictionary();
    info.setValueForKey("CFBundleVersion", PropertyList::string("57"));
    info.setValueForKey("CFBundleShortVersionString", PropertyList::string("1.0"));
    return info;
}

class AboutScreenTest : public testing::Test {
protected:
    explicit AboutScreenTest(const PropertyList& info = withVersions()) {
        auto screen =
            std::make_unique<AboutTableViewController>(AboutServices{log, urls, help, info});
        about = screen.get();
        about->setTitle(QStringLiteral("About"));
        auto root = std::make_unique<NavigationController>(std::move(screen));
        navigation = root.get();
        tabs.addTab(std::move(root), QStringLiteral("About"), {}, {});
        tabs.loadViewIfNeeded();
    }
    bool somethingSelected() const { return about->aboutTable.selectedSection() != -1; }

    RecordingLog log;
    RecordingUrlOpener urls;
    FixedHelpPages help;
    TabBarController tabs;
    NavigationController* navigation = nullptr;
    AboutTableViewController* about = nullptr;
};

class AboutScreenWithoutVersionTest : public AboutScreenTest {
protected:
    AboutScreenWithoutVersionTest() : AboutScreenTest(PropertyList::dictionary()) {}
};

TEST_F(AboutScreenTest, ShowsTheBuildsVersionAndHasTwoSections) {
    EXPECT_EQ(about->versionString.text(), QStringLiteral("Version 57"));
    EXPECT_EQ(about->aboutTable.contentInset(), QMarginsF(0, 0, 0, 20));
    std::vector<int> rows;
    for (int section = -1; section < 4; ++section)
        rows.push_back(about->tableViewNumberOfRowsInSection(section));
    EXPECT_EQ(rows, (std::vector{0, 2, 3, 0, 0}));
    EXPECT_EQ(about->numberOfSectionsInTableView(), 2);
}

TEST_F(AboutScreenWithoutVersionTest, SaysThatThereIsNone) {
    EXPECT_EQ(about->versionString.text(), QStringLiteral("Version (null)"));
}

TEST_F(AboutScreenTest, OpensTheProfileInTheFirstClientThatIsInstalled) {
    const struct {
        std::set<std::string> installed;
        std::string opened;
        std::size_t asked;
    } cases[] = {
        {{"tweetbot:", "twitterrific:", "tweetings:", "twitter:"},
         "tweetbot:///user_profile/iQ7r2m",
         1},
        {{"twitterrific:", "twitter:"}, "twitterrific:///profile?screen_name=iQ7r2m", 2},
        {{"tweetings:", "twitter:"}, "tweetings:///user?screen_name=iQ7r2m", 3},
        {{"twitter:"}, "twitter://user?screen_name=iQ7r2m", 4},
        {{"https:"}, "https://mobile.social.example.org/iQ7r2m", 4},
    };
    const Texts order = {"tweetbot:", "twitterrific:", "tweetings:", "twitter:"};
    for (const auto& [installed, opened, asked] : cases) {
        urls.installed = installed;
        urls.asked.clear();
        urls.opened.clear();
        about->tableViewDidSelectRowAtIndexPath(0, 0);
        EXPECT_EQ(urls.opened, Texts{opened});
        EXPECT_EQ(urls.asked, Texts(order.begin(), order.begin() + static_cast<long>(asked)));
        EXPECT_FALSE(somethingSelected());
        EXPECT_FALSE(about->aboutTable.selectionAnimated());
    }
}

TEST_F(AboutScreenTest, OpensTheDonationPageAndTheSupportMail) {
    about->tableViewDidSelectRowAtIndexPath(0, 1);
    EXPECT_FALSE(somethingSelected());
    about->mail();
    EXPECT_EQ(urls.opened,
              (Texts{"https://payments.example.org/cgi-bin/webscr?cmd=_s-xclick&hosted_button_id="
                     "DUBRIXDONATE1",
                     "mailto:support%40example.org?subject=Lorvane%20(1.2)%20Support"}));
}

TEST_F(AboutScreenTest, PushesTheHelpPagesWithoutTheTabBar) {
    const struct {
        int row;
        const char* title;
        const char* address;
    } cases[] = {
        {0, "Instructions", "http://help.example.org:8080/pages/dubrix-instructions.php"},
        {1, "Changelog", "http://help.example.org:8080/pages/dubrix-changelog.php"},
        {2, "Credits & FAQ", "http://help.example.org:8080/pages/dubrix-faqcredits.php"},
    };
    for (const auto& [row, title, address] : cases) {
        about->tableViewDidSelectRowAtIndexPath(1, row);
        const auto* page = qobject_cast<QVWebViewController*>(navigation->topViewController());
        ASSERT_NE(page, nullptr) << title;
        EXPECT_EQ(page->title(), QString::fromLatin1(title));
        EXPECT_EQ(page->webView->request(), QUrl(QString::fromLatin1(address)));
        EXPECT_FALSE(page->webView->bounces());
        EXPECT_TRUE(page->activityIndicator->animating());
        EXPECT_TRUE(tabs.tabBarHidden()) << title;
        EXPECT_EQ(navigation->backTitle(), QStringLiteral("About"));
        EXPECT_TRUE(somethingSelected()) << "the row stays selected below its page";

        navigation->popViewController();
        EXPECT_FALSE(tabs.tabBarHidden()) << title;
        EXPECT_FALSE(somethingSelected());
    }
    EXPECT_TRUE(urls.opened.empty());
}

TEST_F(AboutScreenTest, LogsEverySelectionAndDoesNothingForOtherRows) {
    for (const auto& [section, row] : {std::pair(0, 2), {1, 3}, {2, 0}, {1, 0}})
        about->tableViewDidSelectRowAtIndexPath(section, row);
    EXPECT_EQ(log.lines, (Texts{"\nindexPath.row 2 \nindex.section 0 \n",
                                "\nindexPath.row 3 \nindex.section 1 \n",
                                "\nindexPath.row 0 \nindex.section 2 \n",
                                "\nindexPath.row 0 \nindex.section 1 \n"}));
    EXPECT_TRUE(urls.opened.empty());
    EXPECT_TRUE(navigation->canGoBack()) << "only the last is a row";
    navigation->popViewController();
    EXPECT_FALSE(navigation->canGoBack());
}

TEST_F(AboutScreenTest, OpensAPageThatNeverLoadsWhileThereIsNoHelpSite) {
    help.address.clear();
    about->tableViewDidSelectRowAtIndexPath(1, 0);
    const auto* page = qobject_cast<QVWebViewController*>(navigation->topViewController());
    ASSERT_NE(page, nullptr);
    EXPECT_TRUE(page->webView->request().isEmpty());
    EXPECT_TRUE(page->activityIndicator->animating());
    EXPECT_FALSE(page->activityIndicator->hidden());
}

} // namespace
} // namespace dubrix
