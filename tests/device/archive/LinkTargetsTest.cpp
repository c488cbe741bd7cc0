#include "device/archive/LinkTargets.h"

#include <gtest/gtest.h>

namespace dubrix {

TEST(LinkTargets, MayNotLeadOutsideByAnyWay) {
    const struct {
        LinkTargets links;
        bool allowed;
    } cases[] = {
        {{{"CodeResources", "_CodeSignature/CodeResources"}}, true},
        {{{"Versions/Current", "A"}, {"Library", "Versions/Current/Library"}}, true},
        {{{"a/b/up", "../.."}}, true},
        {{{"a/dot", "./../a//missing"}}, true},
        {{{"a/b/up", "../../.."}}, false},
        {{{"absolute", "/etc/passwd"}}, false},
        {{{"up", ".."}}, false},
        {{{"around", "../X.app/file"}}, false},
        // Each harmless by its own words: the second climbs from where the first arrives.
        {{{"a/b/top", "../.."}, {"out", "a/b/top/../secret"}}, false},
        {{{"self", "self"}}, false},
        {{{"one", "two/x"}, {"two", "one/x"}}, false},
        {{{"empty", ""}}, false},
        {{{"cut", std::string("a\0b", 3)}}, false},
    };
    for (const auto& [links, allowed] : cases)
        EXPECT_EQ(static_cast<bool>(checkLinkTargets(links)), allowed)
            << links.begin()->first << " -> " << links.begin()->second;
}

} // namespace dubrix
