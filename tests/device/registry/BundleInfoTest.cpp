#include "device/registry/BundleInfo.h"
#include "formats/lists/PropertyList.h"
#include "tests/support/TemporaryFolder.h"

namespace dubrix {

TEST(BundleInfo, FallsBackOnTheFoldersNameAndTakesWrongTypesForAbsent) {
    const struct {
        std::string list;
        std::string name;
        std::optional<std::string> version;
    } cases[] = {
        {"{A = 1;}", "My.Cool", std::nullopt},
        {"{CFBundleName = N; CFBundleVersion = \"4.2 Enhanced\";}", "N", "4.2 Enhanced"},
        {"{CFBundleName = N; CFBundleDisplayName = D;}", "D", std::nullopt},
        {"{CFBundleName = N; CFBundleDisplayName = (D); CFBundleVersion = {};}", "N", std::nullopt},
    };
    const TemporaryFolder folder;
    for (const auto& [list, name, version] : cases) {
        putFile(folder / "My.Cool.app/Info.plist", list);
        for (const char* spelling : {"My.Cool.app", "My.Cool.app/"}) {
            const auto read = BundleInfo::read(folder / spelling);
            ASSERT_TRUE(read);
            EXPECT_EQ(read->displayName, name);
            EXPECT_EQ(read->version, version);
            EXPECT_EQ(read->identifier, std::nullopt);
        }
    }
    for (const char* damaged : {"bplist00 nonsense", "(A)"}) {
        putFile(folder / "My.Cool.app/Info.plist", damaged);
        EXPECT_FALSE(BundleInfo::read(folder / "My.Cool.app")) << damaged;
    }
    EXPECT_FALSE(BundleInfo::read(folder / "Missing.app"));
}

TEST(BundleInfo, GathersTagsAndSchemesPastWrongTypes) {
    const auto read = [](const char* list) {
        return BundleInfo::from(*PropertyList::parse(list), "X.app");
    };
    EXPECT_FALSE(read("{SBAppTags = hidden;}").hidden) << "a string is not a list of tags";
    EXPECT_FALSE(read("{SBAppTags = (other);}").hidden);
    const BundleInfo info = read(
        "{SBAppTags = ({}, hidden); CFBundleURLTypes = (odd, {CFBundleURLSchemes = (one, two);},"
        "{CFBundleURLSchemes = odd;}, {CFBundleURLSchemes = (three);});}");
    EXPECT_TRUE(info.hidden);
    EXPECT_EQ(info.urlSchemes, (std::vector<std::string>{"one", "two", "three"}));
}

} // namespace dubrix
