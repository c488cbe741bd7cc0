#include "network/NetworkServices.h"

#include <gtest/gtest.h>

namespace dubrix {

namespace {

struct LogLines final : SystemLog {
    void log(const std::string& text) override { lines.push_back(text); }
    std::vector<std::string> lines;
};

} // namespace

TEST(NetworkServices, AnswerFromTheirModule) {
    LogLines log;
    NetworkServices services(NETWORK_MODULE, log);
    const std::string site = services.siteAddress();
    ASSERT_TRUE(site.starts_with("http://127.0.0.1:")) << site;
    const auto page = services.dataWithContentsOfURL(site + "/pages/dubrix-instructions.php");
    ASSERT_TRUE(page.has_value());
    EXPECT_TRUE(page->ends_with("</html>\n"));
    EXPECT_EQ(services.siteAddress(), site);
    EXPECT_TRUE(log.lines.empty());
}

TEST(NetworkServices, WithoutTheirModuleNothingIsThere) {
    LogLines log;
    // Missing, no library at all, and a library that is none of ours.
    for (const char* const file : {"/none/dubrix-network.so", "/etc/passwd", "libz.so.1"}) {
        NetworkServices services(file, log);
        EXPECT_EQ(services.siteAddress(), "") << file;
        EXPECT_EQ(services.dataWithContentsOfURL("http://127.0.0.1/"), std::nullopt) << file;
    }
    EXPECT_EQ(log.lines.size(), 3U) << "each says so once";
}

} // namespace dubrix
