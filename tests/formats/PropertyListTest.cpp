#include "formats/lists/PropertyList.h"

#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace dubrix {
namespace {

using namespace std::string_literals;

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
    EXPECT_TRUE(!text.valueForKey("k") && text.count() == 0);
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
        "<dict><key>a b</key><array><string>aAzZ_09</string><dict/></array><key>n</key><integer>-1"
        "</integer><key>d</key><data>AQIDBAU=</data><key>t</key><string>é🤖\n\t\"\\\x01\x7F</"
        "string>"
        "<key>e</key><string></string></dict>");
    EXPECT_EQ(list.description(), R"({
    "a b" =     (
        aAzZ_09,
                {
        }
    );
    n = "-1";
    d = <01020304 05>;
    t = "\U00e9\Ud83e\Udd16\n\t\"\\\001\177";
    e = "";
})");
}

/// A binary property list of the given objects, one-byte offsets and references; the first is top.
std::string binaryOf(const std::vector<std::string>& objects) {
    std::string bytes = "bplist00";
    std::string offsets;
    for (const std::string& object : objects) {
        offsets += static_cast<char>(bytes.size());
        bytes += object;
    }
    const auto table = static_cast<char>(bytes.size());
    return bytes + offsets + "\0\0\0\0\0\0\1\1\0\0\0\0\0\0\0"s + static_cast<char>(objects.size()) +
           std::string(15, '\0') + table;
}

const std::string a = "\x51"
                      "a"; // the text as an object

TEST(PropertyListForms, DepthEndsAt256Levels) {
    const auto nested = [](int levels, const std::string& open, const std::string& close) {
        std::string text = open[0] == '<' ? "<true/>" : "word";
        for (int level = 0; level < levels; ++level)
            text = open + text + close;
        return text;
    };
    for (const auto& [open, close] : {std::pair("<array>", "</array>"),
                                      {"<dict><key>k</key>", "</dict>"},
                                      {"(", ")"},
                                      {"{k=", ";}"}}) {
        EXPECT_TRUE(PropertyList::parse(nested(256, open, close))) << open;
        EXPECT_FALSE(PropertyList::parse(nested(257, open, close))) << open;
        EXPECT_FALSE(PropertyList::parse(nested(10'000, open, close))) << open;
    }
    PropertyList many = PropertyList::array(); // which is a value itself
    for (int count = 1; count < 1 << 20; ++count)
        many.append(PropertyList::boolean(true));
    for (const bool fits : {true, false}) {
        for (const std::string& bytes : {many.xml(), many.binary(), many.description()})
            EXPECT_EQ(PropertyList::parse(bytes).has_value(), fits) << bytes.substr(0, 6);
        many.append(PropertyList::boolean(false));
    }
    PropertyList list = PropertyList::boolean(true);
    for (int level = 1; level <= 300; ++level) {
        PropertyList outer = PropertyList::array();
        outer.append(list);
        list = outer;
        EXPECT_EQ(PropertyList::parse(list.binary()).has_value(), level <= 256) << level;
    }
}

TEST(BinaryPropertyList, ReadsEveryScalar) {
    const std::pair<std::string, std::string> cases[] = {
        {"\x10\xFF", "<integer>255</integer>"},
        {"\x11\xFF\xFF", "<integer>65535</integer>"},
        {"\x12\xFF\xFF\xFF\xFF", "<integer>4294967295</integer>"},
        {"\x13" + std::string(8, '\xFF'), "<integer>-1</integer>"},
        {"\x14" + std::string(8, '\0') + std::string(8, '\xFF'),
         "<integer>18446744073709551615</integer>"},
        {"\x22\x3F\x80\0\0"s, "<real>1</real>"},
        {"\x23\xBF\xB9\x99\x99\x99\x99\x99\x9A", "<real>-0.1</real>"},
        {"\x33\xBF\xF0\0\0\0\0\0\0"s, "<date>2000-12-31T23:59:59Z</date>"},
        {"\x33\xBF\xE0\0\0\0\0\0\0"s, "<date>2000-12-31T23:59:59Z</date>"},
        // What has no place in a calendar.
        {"\x33\xFF\xEF\xFF\xFF\xFF\xFF\xFF\xFF", "<date>0001-01-01T00:00:00Z</date>"},
        {"\x33\x7F\xEF\xFF\xFF\xFF\xFF\xFF\xFF", "<date>9999-12-31T23:59:59Z</date>"},
        {"\x33\x7F\xF8\0\0\0\0\0\0"s, "<date>2001-01-01T00:00:00Z</date>"},
        {"\x42\0\1"s, "<data>AAE=</data>"},
        {"\x5F\x10\x03xyz", "<string>xyz</string>"},
        {"\x63\0\xE9\xD8\x3E\xDD\x16"s, "<string>é🤖</string>"},
        {"\x80\x2A", "<dict><key>CF$UID</key><integer>42</integer></dict>"},
        {"\x09", "<true/>"}};
    for (const auto& [object, xml] : cases)
        EXPECT_EQ(PropertyList::parse(binaryOf({object}))->xml(), PropertyList::parse(xml)->xml());
    EXPECT_EQ(PropertyList::parse(binaryOf({"\0"s})).value().type(), PropertyList::Type::Null);
}

TEST(BinaryPropertyList, SharesObjectsOnceAndInNoCircle) {
    EXPECT_EQ(PropertyList::parse(binaryOf({"\xA3\1\1\2", "\xA1\2", a})),
              PropertyList::parse("((a),(a),a)"));
    EXPECT_EQ(PropertyList::parse(binaryOf({"\xD2\1\1\2\3", a, "\x09", "\x08"})),
              PropertyList::parse("<dict><key>a</key><true/></dict>"))
        << "of a doubled key the first value holds";
    std::vector<std::string> doubling; // 2^40 strings in 200 bytes
    for (char level = 1; level <= 40; ++level)
        doubling.push_back("\xA2"s + level + level);
    doubling.push_back(a);
    EXPECT_FALSE(PropertyList::parse(binaryOf(doubling)));
    PropertyList shared = PropertyList::array(); // written out, all that may be
    for (int count = 0; count < 256; ++count)
        shared.append(PropertyList::data(std::string(std::size_t{1} << 19, 'x')));
    EXPECT_TRUE(PropertyList::parse(shared.binary()));
    shared.append(PropertyList::string("x"));
    EXPECT_FALSE(PropertyList::parse(shared.binary()));
    EXPECT_FALSE(PropertyList::parse(binaryOf({"\xA1\0"s})));
    EXPECT_FALSE(PropertyList::parse(binaryOf({"\xA1\1"s, "\xA1\0"s})));
    EXPECT_FALSE(PropertyList::parse(binaryOf({"\xD1\1\0"s, a})));
}

TEST(BinaryPropertyList, RefusesWhatIsDamaged) {
    const std::vector<std::string> bad[] = {{"\x0F"},                  // fill byte
                                            {"\x20\x01"},              // real of one byte
                                            {"\x87\0\0\0\1\0\0\0\0"s}, // UID of more than 32 bits
                                            {"\x82\0\0\1"s}, // and of a width that none has
                                            {"\x14\1" + std::string(15, '\0')},
                                            {"\x5F\x13\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF"},
                                            {"\xAF\x13\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF"},
                                            {"\x5F\x51xyz"}, // a length that is no integer
                                            {"\x5F\1\0\1a"s},
                                            {"\x54xyz"},            // longer than the object area
                                            {"\x51\xE9"},           // neither ASCII nor UTF-8
                                            {"\x61\xD8\x3E"},       // lone surrogate
                                            {"\x53x\0y"s},          // zero in a text
                                            {"\xA1\1"},             // reference to no object
                                            {"\xD1\1\1", "\x10\1"}, // number as key
                                            {"\xC1\1", "\x10\1"}};  // set
    for (const auto& objects : bad)
        EXPECT_FALSE(PropertyList::parse(binaryOf(objects)))
            << testing::PrintToString(objects.front());
    const std::string good = binaryOf({a});
    EXPECT_EQ(PropertyList::string("a").binary(), good);
    ASSERT_TRUE(PropertyList::parse(good));
    for (std::size_t length = 6; length < good.size(); ++length) // before: a bare word
        EXPECT_FALSE(PropertyList::parse(good.substr(0, length))) << length;
    for (std::size_t fromEnd : {26U, 25U, 17U, 9U, 1U}) // widths, count, top, table
        for (const char false_ : {'\0', '\x7F'}) {
            std::string damaged = good;
            damaged[good.size() - fromEnd] = false_;
            EXPECT_EQ(PropertyList::parse(damaged).has_value(), damaged == good) << fromEnd;
        }
}

TEST(OldStyleText, ReadsEveryKindOfValue) {
    const auto list = PropertyList::parse("\xEF\xBB\xBF// !$*UTF8*$!\n"
                                          "{ bare = com.example-1.App_$/:; /* not } the end */\n"
                                          "  \"quoted key\" = 'single \"quotes\"';\n"
                                          "  list = ( a, \"b c\", ( ), { }, );\n"
                                          "  bytes = <0fbd77 1c27\n35AE>; none = <>;\n"
                                          "  path=/usr/bin; // the end\n"
                                          "}\n// bye");
    EXPECT_EQ(list,
              PropertyList::parse(
                  "<dict><key>bare</key><string>com.example-1.App_$/:</string>"
                  "<key>quoted key</key><string>single \"quotes\"</string>"
                  "<key>list</key><array><string>a</string><string>b c</string><array/><dict/>"
                  "</array><key>bytes</key><data>D713HCc1rg==</data><key>none</key><data/>"
                  "<key>path</key><string>/usr/bin</string></dict>")
                  .value());
    const auto table =
        PropertyList::parse("/* Title *//**/\n\"Title\" = \"Größe\";\nalone;\nTitle = again;\n");
    EXPECT_EQ(table, PropertyList::parse("{alone = alone; Title = \"Größe\";}").value());
}

TEST(OldStyleText, ResolvesEscapes) {
    const std::pair<const char*, const char*> cases[] = {
        {R"("\a\b\f\n\r\t\v\"\'\\\q")", "\a\b\f\n\r\t\v\"'\\q"},
        {R"("\101\60x\0012")", "A0x\0012"},
        {R"("\341\256\200\377")", "Æﬁ\u00A0\uFFFD"},
        {R"("\U00e9\U41 \Ud83e\Udd16\u263A\Ud800\Udc00\Udbff\uDFFF")",
         "éA 🤖☺\U00010000\U0010FFFF"},
        {"\"line \\\nbreak\"", "line \nbreak"},
        {"'it\\'s'", "it's"}};
    for (const auto& [input, expected] : cases)
        EXPECT_EQ(PropertyList::parse(input), PropertyList::string(expected)) << input;
}

TEST(OldStyleText, RefusesWhatIsDamaged) {
    const std::initializer_list<const char*> broken = {
        "{",        "}",         ")",         "( a",       "<0>",       "<00",      "\"a",
        "<0g>",     "'a\"",      "/* a",      "( , )",     "\"a\\",     "a = b",    "( a b )",
        "// only",  "{ a b; }",  "{ = b; }",  "a = b; c",  "a = b; }",  "\"\xE9\"", "\xFF\xFE",
        "a = <00>", "{ a = b }", "{ a = ; }", "( a,, b )", "two words", "\"\\777\""};
    const std::initializer_list<const char*> misplaced = {
        "{ a = b; }}",       "\"\\Ud83e\"",       "\"\\U0000\"",   "\"\\Udd16\"",
        "{ a = b; } c",      "\"\\Ud83ex\"",      "a = é_is_bad;", "#!/bin/sh\necho",
        "{ a = \"\xE9\"; }", "\"\\Ud83e\\U0041\""};
    for (const auto& inputs : {broken, misplaced})
        for (const char* const input : inputs)
            EXPECT_FALSE(PropertyList::parse(input)) << input;
    EXPECT_FALSE(PropertyList::parse("\"a\0b\""s));
}

} // namespace
} // namespace dubrix
