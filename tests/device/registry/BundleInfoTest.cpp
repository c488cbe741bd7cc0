#include "device/registry/BundleInfo.h"
#include "formats/lists/PropertyList.h"
#include "tests/support/TemporaryFolder.h"

namespace dubrix {

namespace {

PropertyList listOf(std::initializer_list<PropertyList> values) {
    PropertyList list = PropertyList::array();
    for (const PropertyList& value : values)
        list.append(value);
    return list;
}

PropertyList text(const char* value) {
    return PropertyList::string(value);
}

PropertyList schemes(const PropertyList& value) {
    PropertyList type = PropertyList::dictionary();
    type.setValueForKey("CFBundleURLSchemes", value);
    return type;
}

} // namespace

TEST(BundleInfo, FallsBackOnTheFoldersNameAndTakesWrongTypesForAbsent) {
    const struct {
        std::map<std::string, PropertyList> values;
        std::string name;
        std::optional<std::string> version;
    } cases[] = {
        {{}, "My.Cool", std::nullopt},
        {{{"CFBundleName", text("N")}, {"CFBundleVersion", text("4.2 Enhanced")}},
         "N",
         "4.2 Enhanced"},
        {{{"CFBundleName", text("N")}, {"CFBundleDisplayName", text("D")}}, "D", std::nullopt},
        {{{"CFBundleName", text("N")}, {"CFBundleDisplayName", listOf({text("D")})}},
         "N",
         std::nullopt},
        {{{"CFBundleName", PropertyList::integer(3)}, {"CFBundleVersion", PropertyList::real(1.5)}},
         "My.Cool",
         std::nullopt},
    };
    for (const auto& [values, name, version] : cases) {
        const TemporaryFolder folder;
        PropertyList info = PropertyList::dictionary();
        for (const auto& [key, value] : values)
            info.setValueForKey(key, value);
        putFile(folder / "My.Cool.app/Info.plist", info.xml());
        for (const char* spelling : {"My.Cool.app", "My.Cool.app/"}) {
            const auto read = BundleInfo::read(folder / spelling);
            ASSERT_TRUE(read);
            EXPECT_EQ(read->displayName, name);
            EXPECT_EQ(read->version, version);
            EXPECT_EQ(read->identifier, std::nullopt);
        }
    }
}

TEST(BundleInfo, GathersTagsAndSchemesPastWrongTypes) {
    PropertyList info = PropertyList::dictionary();
    info.setValueForKey("SBAppTags", text("hidden"));
    EXPECT_FALSE(BundleInfo::from(info, "X.app").hidden) << "a string is not a list of tags";
    info.setValueForKey("SBAppTags", listOf({PropertyList::integer(1), text("hidden")}));
    info.setValueForKey("CFBundleURLTypes",
                        listOf({text("odd"), schemes(listOf({text("one"), text("two")})),
                                schemes(text("odd")), schemes(listOf({text("three")}))}));
    const BundleInfo read = BundleInfo::from(info, "X.app");
    EXPECT_TRUE(read.hidden);
    EXPECT_EQ(read.urlSchemes, (std::vector<std::string>{"one", "two", "three"}));
}

TEST(BundleInfo, IsNothingWithoutADictionary) {
    const TemporaryFolder folder;
    putFile(folder / "Damaged.app/Info.plist", "bplist00 nonsense");
    putFile(folder / "Array.app/Info.plist", PropertyList::array().xml());
    for (const char* name : {"Damaged.app", "Array.app", "Missing.app"})
        EXPECT_FALSE(BundleInfo::read(folder / name)) << name;
}

} // namespace dubrix
