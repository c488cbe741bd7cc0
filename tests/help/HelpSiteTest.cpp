#include "help/HelpSite.h"

#include <gtest/gtest.h>
#include <httplib.h>
#include <set>

namespace dubrix {
namespace {

const std::vector<std::string> pages = {"/pages/dubrix-instructions.php",
                                        "/pages/dubrix-changelog.php",
                                        "/pages/dubrix-faqcredits.php"};

std::set<std::string> matches(const std::string& text, const char* pattern) {
    const std::regex expression(pattern);
    std::set<std::string> found;
    for (std::sregex_iterator match(text.begin(), text.end(), expression), end; match != end;
         ++match)
        found.insert((*match)[1]);
    return found;
}

TEST(HelpSite, EveryPageAndEveryLinkAnswersAndNothingElse) {
    auto site = std::make_unique<HelpSite>();
    httplib::Client client(site->siteAddress());
    const auto ask = [&client](const std::string& method, const std::string& path) {
        httplib::Request request;
        request.method = method;
        request.path = path;
        const httplib::Result answer = client.send(request);
        return answer ? *answer : httplib::Response();
    };
    std::set<std::string> titles;
    for (const std::string& page : pages) {
        const httplib::Response answer = ask("GET", page);
        EXPECT_EQ(answer.status, 200) << page;
        EXPECT_EQ(answer.get_header_value("Content-Type"), "text/html; charset=utf-8");
        EXPECT_TRUE(
            answer.get_header_value("Content-Security-Policy").starts_with("default-src 'none'"));
        titles.merge(matches(answer.body, "<title>([^<]+)</title>"));
        EXPECT_TRUE(answer.body.ends_with("</html>\n")) << page;
        EXPECT_EQ(matches(answer.body, "(DUBRIX_|<script|<link|<img|<iframe| src=|url\\(|@import)"),
                  std::set<std::string>())
            << page << " is whole and loads nothing";
        const auto links = matches(answer.body, "href=\"([^\"]*)\"");
        EXPECT_GE(links.size(), 2U) << page;
        for (const std::string& link : links) {
            const std::string target = link.substr(0, link.find('#'));
            const auto linked = ask("GET", target.empty() ? page : target);
            EXPECT_EQ(linked.status, 200) << link;
            const std::string anchor = link.substr(target.size());
            EXPECT_TRUE(anchor.empty() ||
                        linked.body.find("id=\"" + anchor.substr(1) + '"') != std::string::npos)
                << link;
        }
        for (const char* const method : {"POST", "PUT", "DELETE", "OPTIONS"})
            EXPECT_EQ(ask(method, page).status, 404) << method;
        EXPECT_TRUE(ask("HEAD", page).status == 200 && ask("HEAD", page).body.empty());
    }
    EXPECT_EQ(titles.size(), pages.size());
    for (const char* const path :
         {"/", "/pages/", "/pages/dubrix-instructions_php", "/pages/dubrix-instructions.php/",
          "/pages/../etc/passwd", "/%2e%2e/etc/passwd"})
        EXPECT_EQ(ask("GET", path).status, 404) << path;
    site.reset();
    EXPECT_FALSE(client.Get(pages[0])) << "nobody listens any more";
}

} // namespace
} // namespace dubrix
