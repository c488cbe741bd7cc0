#include "formats/lists/PropertyList.h"

#include <gtest/gtest.h>

namespace dubrix {
namespace {

using namespace std::string_literals;

TEST(OldStyleText, ReadsEveryKindOfValue) {
    auto list = PropertyList::parse("\xEF\xBB\xBF// !$*UTF8*$!\n"
                                    "{ bare = com.example-1.App_$/:; /* not } the end */\n"
                                    "  \"quoted key\" = 'single \"quotes\"';\n"
                                    "  list = ( a, \"b c\", ( ), { }, );\n"
                                    "  bytes = <0fbd77 1c27\n35AE>; none = <>;\n"
                                    "  path=/usr/bin; // the end\n"
                                    "}\n// bye");
    ASSERT_TRUE(list);
    EXPECT_EQ(list->keys(),
              (std::vector<std::string>{"bare", "quoted key", "list", "bytes", "none", "path"}));
    EXPECT_EQ(list->stringForKey("bare"), "com.example-1.App_$/:");
    EXPECT_EQ(list->stringForKey("quoted key"), "single \"quotes\"");
    EXPECT_EQ(list->valueForKey("list")->count(), 4U);
    EXPECT_TRUE(list->valueForKey("list")->valueAt(3)->isDictionary());
    EXPECT_EQ(list->valueForKey("bytes")->dataValue(), "\x0f\xbd\x77\x1c\x27\x35\xae");
    EXPECT_EQ(list->valueForKey("none")->dataValue(), "");
    EXPECT_EQ(list->stringForKey("path"), "/usr/bin");
}

TEST(OldStyleText, ReadsStringTables) {
    auto list =
        PropertyList::parse("/* Title */\n\"Title\" = \"Titel\";\nCFBundleName = é_is_bad;");
    EXPECT_FALSE(list) << "bare words are ASCII";
    list = PropertyList::parse("/* Title */\n\"Title\" = \"Größe\";\nalone;\nTitle = again;\n");
    ASSERT_TRUE(list);
    EXPECT_EQ(list->keys(), (std::vector<std::string>{"Title", "alone"}));
    EXPECT_EQ(list->stringForKey("Title"), "Größe");
    EXPECT_EQ(list->stringForKey("alone"), "alone");
}

TEST(OldStyleText, ResolvesEscapes) {
    const std::pair<std::string, std::string> cases[] = {
        {R"("\a\b\f\n\r\t\v\"\'\\\q")", "\a\b\f\n\r\t\v\"'\\q"},
        {R"("\101\60x\0012")", "A0x\0012"},
        {R"("\341\256")", "Æﬁ"},
        {R"("\U00e9\U41 \Ud83e\Udd16\u263A")", "éA 🤖☺"},
        {"\"line \\\nbreak\"", "line \nbreak"},
        {"'it\\'s'", "it's"},
        {"word", "word"},
    };
    for (const auto& [input, expected] : cases) {
        auto list = PropertyList::parse(input);
        ASSERT_TRUE(list) << input;
        EXPECT_EQ(list->stringValue(), expected) << input;
    }
}

TEST(OldStyleText, RefusesDamagedInput) {
    const std::string inputs[] = {
        "{",
        "}",
        "{ a = b }",
        "{ a = ; }",
        "{ a b; }",
        "{ = b; }",
        "{ a = b; } c",
        "{ a = b; }}",
        "( a",
        "( a b )",
        "( , )",
        "( a,, b )",
        ")",
        "<0>",
        "<0g>",
        "<00",
        "\"a",
        "'a\"",
        "\"a\\",
        "/* a",
        "two words",
        "a = b",
        "a = b; c",
        "a = b; }",
        "\"\\Ud83e\"",
        "\"\\Ud83ex\"",
        "\"\\U0000\"",
        "\"\\777\"",
        "\"a\0b\""s,
        "\"\xE9\"",
        "{ a = \"\xE9\"; }",
        "// only",
        "\xFF\xFE",
        "a = <00>",
        "#!/bin/sh\necho",
    };
    for (const std::string& input : inputs)
        EXPECT_FALSE(PropertyList::parse(input)) << input;
}

} // namespace
} // namespace dubrix
