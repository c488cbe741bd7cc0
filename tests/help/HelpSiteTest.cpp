#include "help/HelpSite.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <httplib.h>
#include <set>

namespace dubrix {
namespace {

const std::vector<std::string> pages = {"/pages/dubrix-instructions.php",
                                        "/pages/dubrix-changelog.php",
                                        "/pages/dubrix-faqcredits.php"};

std::set<std::string> matches(const std::string& text, const std::string& pattern) {
    const std::regex expression(pattern);
    std::set<std::string> found;
    for (std::sregex_iterator match(text.begin(), text.end(), expression), end; match != end;
         ++match)
        found.insert((*match)[1]);
    return found;
}

TEST(HelpSiteTest, EveryPageAndEveryLinkAnswers) {
    HelpSite site;
    httplib::Client client(site.siteAddress());
    std::set<std::string> titles;
    for (const std::string& page : pages) {
        const auto answer = client.Get(page);
        ASSERT_TRUE(answer) << page;
        EXPECT_EQ(answer->status, 200) << page;
        EXPECT_EQ(answer->get_header_value("Content-Type"), "text/html; charset=utf-8");
        titles.merge(matches(answer->body, "<title>([^<]+)</title>"));
        EXPECT_TRUE(answer->body.ends_with("</html>\n")) << page;
        EXPECT_EQ(answer->body.find("DUBRIX_PAGE_STYLE"), std::string::npos) << page;
        EXPECT_TRUE(
            matches(answer->body, "(<script|<link|<img|<iframe| src=|url\\(|@import)").empty())
            << page << " loads something";

        const auto links = matches(answer->body, "href=\"([^\"]*)\"");
        EXPECT_GE(links.size(), 2U) << page;
        for (const std::string& link : links) {
            const std::string target = link.substr(0, link.find('#'));
            const auto linked = client.Get(target.empty() ? page : target);
            ASSERT_TRUE(linked) << link;
            EXPECT_EQ(linked->status, 200) << link;
            const std::string anchor = link.substr(target.size());
            EXPECT_TRUE(anchor.empty() ||
                        linked->body.find("id=\"" + anchor.substr(1) + '"') != std::string::npos)
                << link;
        }
    }
    EXPECT_EQ(titles.size(), pages.size());
}

TEST(HelpSiteTest, NothingElseIsThere) {
    HelpSite site;
    httplib::Client client(site.siteAddress());
    for (const std::string& path :
         {std::string("/"), std::string("/pages/"), std::string("/pages/dubrix-instructions_php"),
          std::string("/pages/dubrix-instructions.php/"),
          std::string("/pages//dubrix-faqcredits.php"), std::string("/pages/../etc/passwd"),
          std::string("/%2e%2e/etc/passwd"), "/" + std::string(4000, 'a')}) {
        const auto answer = client.Get(path);
        ASSERT_TRUE(answer) << path;
        EXPECT_EQ(answer->status, 404) << path;
    }
    const auto posted = client.Post(pages[0], "body", "text/plain");
    EXPECT_TRUE(!posted || posted->status == 404);
    const auto removed = client.Delete(pages[0]);
    EXPECT_TRUE(removed && removed->status == 404);
    const auto head = client.Head(pages[0]);
    EXPECT_TRUE(head && head->status == 200 && head->body.empty());
}

int portOf(const std::string& address) {
    return std::stoi(address.substr(address.rfind(':') + 1));
}

/// A connection of somebody who says nothing.
int silentConnection(const std::string& address) {
    sockaddr_in place{};
    place.sin_family = AF_INET;
    place.sin_port = htons(static_cast<std::uint16_t>(portOf(address)));
    place.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const int connection = ::socket(AF_INET, SOCK_STREAM, 0);
    EXPECT_EQ(::connect(connection, reinterpret_cast<sockaddr*>(&place), sizeof place), 0);
    return connection;
}

TEST(HelpSiteTest, GoesOnBesideSilentConnectionsAndStopsWithItsObject) {
    std::vector<int> silent;
    std::string address;
    {
        HelpSite site;
        HelpSite other;
        address = site.siteAddress();
        EXPECT_TRUE(address.starts_with("http://127.0.0.1:")) << address;
        EXPECT_EQ(site.siteAddress(), address) << "one site has one address";
        EXPECT_NE(other.siteAddress(), address);
        for (int count = 0; count < 4; ++count)
            silent.push_back(silentConnection(address));
        httplib::Client client(address);
        const auto answer = client.Get(pages[1]);
        EXPECT_TRUE(answer && answer->status == 200);
    }
    EXPECT_FALSE(httplib::Client(address).Get(pages[1])) << "nobody listens any more";
    for (const int connection : silent)
        ::close(connection);
}

} // namespace
} // namespace dubrix
