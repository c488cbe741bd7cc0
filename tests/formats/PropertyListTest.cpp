#include "formats/lists/PropertyList.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace dubrix {
namespace {

TEST(PropertyList, ReadsTruthAsThePhoneDoes) {
    for (const char* const text : {"YES", "yes", "true", "T", "1", " \t9", "-02", "+1", "0007x"})
        EXPECT_TRUE(PropertyList::string(text).booleanValue()) << text;
    for (const char* const text : {"0", "NO", "", "on", "- 1", "0.5"})
        EXPECT_FALSE(PropertyList::string(text).booleanValue()) << text;
    for (const auto& value : {PropertyList::integer(-1), PropertyList::real(0.25),
                              *PropertyList::parse("<integer>18446744073709551615</integer>")})
        EXPECT_TRUE(value.booleanValue());
    for (const auto& value : {PropertyList::integer(0), PropertyList::real(0),
                              PropertyList::data("1"), PropertyList::dictionary()})
        EXPECT_FALSE(value.booleanValue());
}

TEST(PropertyList, ReadsNumbersInSinglePrecision) {
    constexpr float infinity = std::numeric_limits<float>::infinity();
    const std::pair<const char*, float> texts[] = {
        {"0.1", 0.1F}, {" +.5x", 0.5F}, {"-3e2 ", -300}, {"1e999", infinity}, {"-1e999", -infinity},
        {"1e-999", 0}, {"0x10", 0},     {"inf", 0},      {"nan", 0},          {"", 0},
        {"+-1", 0},    {"1,5", 1},      {"5.e1", 50},    {"2E+1", 20},        {"3e", 3},
        {".", 0},      {"7e-1", 0.7F}};
    for (const auto& [text, expected] : texts)
        EXPECT_EQ(PropertyList::string(text).floatValue(), expected) << text;
    EXPECT_EQ(PropertyList::real(0.1).floatValue(), 0.1F);
    EXPECT_EQ(PropertyList::boolean(true).floatValue(), 1);
    EXPECT_EQ(PropertyList::integer(-7).floatValue(), -7);
    EXPECT_EQ(PropertyList::parse("<integer>18446744073709551615</integer>")->floatValue(),
              18446744073709551615.0F);
    EXPECT_EQ(PropertyList::array().floatValue(), 0);
}

TEST(PropertyList, ChangesOnlyWhatItIsToldTo) {
    auto list = *PropertyList::parse("{a = 1; b = (x, y); c = 3; d = 4;}");
    const PropertyList before = list;
    list.setValueForKey("c", PropertyList::string("full"));
    list.setValueForKey("new", list);
    list.removeValueForKey("a");
    list.removeValueForKey("absent");
    EXPECT_EQ(before, PropertyList::parse("{d = 4; c = 3; b = (x, y); a = 1;}"));
    EXPECT_EQ(list.keys(), (std::vector<std::string>{"b", "c", "d", "new"}));
    EXPECT_EQ(list, PropertyList::parse("{b = (x, y); c = full; d = 4; new = {a = 1; b = (x, y); "
                                        "c = full; d = 4;};}"));
    EXPECT_TRUE(list.hasKey("b") && !list.hasKey("a") && !list.valueForKey("a"));
    EXPECT_EQ(list.stringForKey("b"), std::nullopt);
    EXPECT_EQ(list.stringForKey("c"), "full");

    auto array = *list.valueForKey("b");
    array.append(array);
    EXPECT_EQ(array, PropertyList::parse("(x, y, (x, y))"));
    EXPECT_EQ(array.count(), 3U);
    EXPECT_EQ(array.valueAt(1)->stringValue(), "y");
    EXPECT_EQ(array.valueAt(3), std::nullopt);

    auto text = PropertyList::string("a");
    text.setValueForKey("k", text);
    text.append(text);
    EXPECT_EQ(text, PropertyList::string("a"));
    EXPECT_TRUE(!text.valueForKey("k") && text.count() == 0 && !text.dataValue());
}

TEST(PropertyList, TellsTypesAndValuesApart) {
    const auto huge = PropertyList::parse("<integer>18446744073709551615</integer>");
    const PropertyList values[] = {
        PropertyList::integer(1),        PropertyList::boolean(true),
        PropertyList::real(1),           PropertyList::string("1"),
        PropertyList::data("1"),         PropertyList::array(),
        PropertyList::integer(-1),       *huge,
        *PropertyList::parse("(a)"),     *PropertyList::parse("(a, a)"),
        PropertyList::dictionary(),      *PropertyList::parse("{a = b;}"),
        *PropertyList::parse("{b = b;}")};
    for (const PropertyList& one : values)
        for (const PropertyList& other : values)
            EXPECT_EQ(one == other, &one == &other) << one.xml() << other.xml();
    EXPECT_EQ(PropertyList::real(std::nan("")), PropertyList::real(std::nan("")));
}

TEST(PropertyList, DescribesItselfAsThePhonePrints) {
    EXPECT_EQ(PropertyList::string("a \"b\"").description(), "a \"b\"");
    EXPECT_EQ(PropertyList::boolean(true).description(), "1");
    EXPECT_EQ(PropertyList::real(100000).description(), "100000");
    EXPECT_EQ(PropertyList::real(0.1F).description(), "0.10000000149011612");
    EXPECT_EQ(PropertyList::real(-0.1).description(), "-0.1");
    EXPECT_EQ(PropertyList::parse("<date>1999-12-31T23:59:59Z</date>")->description(),
              "1999-12-31 23:59:59 +0000");
    const auto list = *PropertyList::parse(
        "<dict><key>a b</key><array><string>x_9Z</string><dict/></array><key>n</key><integer>-1"
        "</integer><key>d</key><data>AQIDBAU=</data><key>t</key><string>é🤖\n\t\"\\\x01\x7F</"
        "string>"
        "<key>e</key><string></string></dict>");
    EXPECT_EQ(list.description(), R"({
    "a b" =     (
        x_9Z,
                {
        }
    );
    n = "-1";
    d = <01020304 05>;
    t = "\U00e9\Ud83e\Udd16\n\t\"\\\001\177";
    e = "";
})");
}

} // namespace
} // namespace dubrix
