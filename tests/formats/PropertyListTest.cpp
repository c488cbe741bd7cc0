#include "formats/lists/PropertyList.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <limits>

namespace dubrix {
namespace {

using Type = PropertyList::Type;
using namespace std::string_literals;

std::string document(std::string_view value) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
           "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
           "<plist version=\"1.0\">\n" +
           std::string(value) + "</plist>\n";
}

/// Every kind of value, in the layout that the phone writes.
const std::string everything = document(R"(<dict>
	<key>zebra &amp; &lt;é🤖&gt;</key>
	<string> kept  blanks &amp; &lt;é🤖&gt; "'
</string>
	<key>empty</key>
	<string></string>
	<key>numbers</key>
	<array>
		<integer>-9223372036854775808</integer>
		<integer>-1</integer>
		<integer>0</integer>
		<integer>9223372036854775807</integer>
		<integer>9223372036854775808</integer>
		<integer>18446744073709551615</integer>
		<real>0.0</real>
		<real>-0.0</real>
		<real>1</real>
		<real>0.10000000000000001</real>
		<real>4.9406564584124654e-324</real>
		<real>1.7976931348623157e+308</real>
		<real>nan</real>
		<real>+infinity</real>
		<real>-infinity</real>
		<true/>
		<false/>
	</array>
	<key>dates</key>
	<array>
		<date>0001-01-01T00:00:00Z</date>
		<date>1999-12-31T23:59:59Z</date>
		<date>2001-01-01T00:00:00Z</date>
		<date>9999-12-31T23:59:59Z</date>
	</array>
	<key>data</key>
	<dict>
		<key>none</key>
		<data>
		</data>
		<key>two lines</key>
		<data>
		AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA
		AQ==
		</data>
	</dict>
	<key>uid</key>
	<dict>
		<key>CF$UID</key>
		<integer>4294967295</integer>
	</dict>
	<key>bare</key>
	<array>
		<array/>
		<dict/>
	</array>
	<key>aardvark</key>
	<string>last</string>
</dict>
)");

TEST(PropertyList, KeepsEveryValueThroughXmlAndBinary) {
    auto list = PropertyList::parse(everything);
    ASSERT_TRUE(list);
    EXPECT_EQ(list->xml(), everything);
    EXPECT_EQ(list->keys().back(), "aardvark");
    auto fromBinary = PropertyList::parse(list->binary());
    ASSERT_TRUE(fromBinary);
    EXPECT_EQ(*fromBinary, *list);
    EXPECT_EQ(fromBinary->xml(), everything);
    EXPECT_EQ(list->valueForKey("uid")->type(), Type::Uid);
    EXPECT_EQ(list->valueForKey("data")->valueForKey("two lines")->dataValue(),
              std::string(45, '\0') + '\1');
}

TEST(PropertyList, DependsOnNoLocale) {
    if (!std::setlocale(LC_ALL, "de_DE.UTF-8") && !std::setlocale(LC_ALL, "fr_FR.UTF-8"))
        GTEST_SKIP() << "needs a locale with a decimal comma";
    auto list = PropertyList::parse(everything);
    std::string written = list ? list->xml() : "";
    std::string described = PropertyList::real(0.1).description();
    std::setlocale(LC_ALL, "C");
    EXPECT_EQ(written, everything);
    EXPECT_EQ(described, "0.1");
}

TEST(PropertyList, ReadsTheSpellingsThatXmlAllows) {
    const std::string quick = "<plist><string>a</string></plist>";
    const struct {
        std::string input;
        PropertyList value;
    } cases[] = {
        {"\xEF\xBB\xBF" + quick, PropertyList::string("a")},
        {" \n<?xml version='1.0'?><!-- <x> --><plist version = \"1.0\" ><string\n>a</string >"
         "</plist >\n<!-- end -->\n",
         PropertyList::string("a")},
        {"<string>a</string>", PropertyList::string("a")},
        {"<!DOCTYPE plist [ <!ENTITY x \"]>\"> ]>" + quick, PropertyList::string("a")},
        {document("<string>&#65;&#x1F916;<!-- & -->&apos;<![CDATA[<&]]>]]&quot;</string>"),
         PropertyList::string("A🤖'<&]]\"")},
        {document("<string>\x01 \r\n\x7F</string>"), PropertyList::string("\x01 \r\n\x7F")},
        {document("<string/>"), PropertyList::string("")},
        {"<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?><plist><string>\xE9</string></plist>",
         PropertyList::string("é")},
        {document("<integer> +0x1F </integer>"), PropertyList::integer(31)},
        {document("<real>-.5E1</real>"), PropertyList::real(-5)},
        {document("<data>\n A Q\tI=\n</data>"), PropertyList::data("\1\2")},
        {document("<real>1e-999</real>"), PropertyList::real(0)},
        {document("<real>-0." + std::string(400, '0') + "1e+9</real>"), PropertyList::real(-0.0)},
        {document("<real>1" + std::string(400, '0') + "e-400</real>"), PropertyList::real(1)},
        {document("<true></true>"), PropertyList::boolean(true)},
        {document("<dict>\n</dict>"), PropertyList::dictionary()},
    };
    for (const auto& [input, value] : cases) {
        auto list = PropertyList::parse(input);
        ASSERT_TRUE(list) << input;
        EXPECT_EQ(*list, value) << input << list->xml();
    }
}

TEST(PropertyList, LooksNoFurtherThanTheRootElement) {
    for (const std::string& after : {"garbage"s, "<plist/>"s, document("<true/>"), "\xFF\0<!--"s}) {
        EXPECT_EQ(PropertyList::parse(document("<string>a</string>") + after),
                  PropertyList::string("a"))
            << after;
        EXPECT_EQ(PropertyList::parse("<string>a</string>" + after), PropertyList::string("a"));
    }
    EXPECT_TRUE(PropertyList::parse("<!-- \xFF -->" + document("<true/>")));
}

TEST(PropertyList, ReadsTheEncodingThatADocumentDeclares) {
    const auto inEncoding = [](const std::string& name, const std::string& text) {
        return "<?xml version=\"1.0\" encoding=\"" + name + "\"?><plist><string>" + text +
               "</string></plist>";
    };
    const struct {
        const char* encoding;
        const char* bytes;
        const char* text;
    } cases[] = {
        {"Windows-1252", "Caf\xE9 \x80", "Café €"},
        {"windows-1251", "\xC4\xE0", "Да"},
        {"macintosh", "Caf\x8E", "Café"},
        {"Shift_JIS", "\x83\x65\x83\x58\x83\x67", "テスト"},
        {"GB2312", "\xB2\xE2", "测"},
        // Names that do not tell, or tell a lie.
        {"EBCDIC", "a\xC3\xA9", "aé"},
        {"x-unknown", "a\xE9", "a\uFFFD"},
        {"UTF-16", "\xC3\xA9", "é"},
        {"UTF-32", "\xC3\xA9", "é"},
        {"Shift_JIS", "\x83", "\uFFFD"},
        {"utf-8//IGNORE", "\xC3\xA9", "é"},
    };
    for (const auto& [encoding, bytes, text] : cases)
        EXPECT_EQ(PropertyList::parse(inEncoding(encoding, bytes)), PropertyList::string(text))
            << encoding;
    EXPECT_FALSE(PropertyList::parse(inEncoding("UTF-8", "\xE9")));
    std::string wide = "\xFF\xFE\0\0"s;
    for (const char character : document("<string>a</string>"))
        wide += std::string(1, character) + "\0\0\0"s;
    EXPECT_EQ(PropertyList::parse(wide), PropertyList::string("a"));
}

TEST(PropertyList, ReadsUtf16InBothByteOrders) {
    for (std::string text : {"<plist><string>a</string></plist>"s, "{ k = \"a\"; }"s}) {
        std::string little = "\xFF\xFE";
        std::string big = "\xFE\xFF";
        for (char character : text) {
            (little += character) += '\0';
            (big += '\0') += character;
        }
        auto expected = PropertyList::parse(text);
        ASSERT_TRUE(expected) << text;
        for (const std::string& bytes : {little, big}) {
            auto list = PropertyList::parse(bytes);
            ASSERT_TRUE(list) << text;
            EXPECT_EQ(*list, *expected);
        }
        EXPECT_FALSE(PropertyList::parse(little.substr(0, little.size() - 1)));
    }
}

TEST(PropertyList, RefusesDamagedXml) {
    const std::string inputs[] = {
        "",
        " \n",
        "\xEF\xBB\xBF",
        "<?xml version=\"1.0\"?>",
        document(""),
        document("<string>a</string><string>b</string>"),
        document("<string>a</strong>"),
        document("<string><b>a</b></string>"),
        document("<dict><key>a</key></dict>"),
        document("<dict><string>a</string><string>b</string></dict>"),
        document("<dict><key>a</key><key>b</key></dict>"),
        document("<array><string>a</string></dict>"),
        document("<array>stray<string>a</string></array>"),
        document("<array><key>a</key></array>"),
        document("<true>yes</true>"),
        document("<set/>"),
        document("<null/>"),
        document("<integer/>"),
        document("<integer>12x</integer>"),
        document("<integer>18446744073709551616</integer>"),
        document("<integer>-9223372036854775809</integer>"),
        document("<real>1,5</real>"),
        document("<real>1e999</real>"),
        document("<real>--1</real>"),
        document("<date>2004-13-01T00:00:00Z</date>"),
        document("<date>2004-01-01T00:00:00</date>"),
        document("<date>20040-01-01T00:00:00Z</date>"),
        document("<date></date>"),
        document("<data>A</data>"),
        document("<data>A*==</data>"),
        document("<data>AQ==AQ==</data>"),
        document("<string>&unknown;</string>"),
        document("<string>&#0;</string>"),
        document("<string>&#xD800;</string>"),
        document("<string>a & b</string>"),
        document("<string>\xC3(</string>"),
        document("<string>a\0b</string>"s),
        document("<string a=b>a</string>"),
        "<?xml version=\"1.0\" encoding=\"EBCDIC\"?><plist><string>a</string>",
        "<!DOCTYPE plist [<!ENTITY x \"y\">]><plist><string>&x;</string></plist>",
    };
    for (const std::string& input : inputs)
        EXPECT_FALSE(PropertyList::parse(input)) << input;
    for (std::size_t length = 0; length < everything.size() - 1; ++length)
        EXPECT_FALSE(PropertyList::parse(everything.substr(0, length))) << length;
}

TEST(PropertyList, OfAKeyThatComesAgainTheFirstValueHolds) {
    std::string many;
    for (int number = 0; number < 40; ++number)
        many += "<key>" + std::to_string(number) + "</key><true/>";
    for (const std::string& others : {""s, many}) {
        const auto list = PropertyList::parse(
            document("<dict><key>a</key><true/><key>b</key><true/>" + others +
                     "<key>a</key><false/><key>a</key><string>c</string></dict>"));
        ASSERT_TRUE(list);
        EXPECT_EQ(list->valueForKey("a"), PropertyList::boolean(true));
        EXPECT_EQ(*list, *PropertyList::parse("<dict>" + others +
                                              "<key>b</key><true/><key>a</key><true/></dict>"));
    }
    EXPECT_EQ(PropertyList::parse("{a = 1; a = 2;}")->stringForKey("a"), "1");
}

TEST(PropertyList, OnlyALoneKeyWithASmallNumberIsAUid) {
    for (std::string value : {"<integer>4294967296</integer>", "<integer>-1</integer>",
                              "<string>1</string>", "<integer>1</integer><key>b</key><true/>"}) {
        auto list = PropertyList::parse(document("<dict><key>CF$UID</key>" + value + "</dict>"));
        ASSERT_TRUE(list) << value;
        EXPECT_EQ(list->type(), Type::Dictionary) << value;
    }
}

TEST(PropertyList, StaysReadableWhateverTextIsPutIn) {
    auto list = PropertyList::dictionary();
    list.setValueForKey("a\0b"s, PropertyList::string("\xFF<\xF0\x9F\0é"s));
    for (const std::string& bytes : {list.xml(), list.binary()}) {
        auto again = PropertyList::parse(bytes);
        ASSERT_TRUE(again);
        EXPECT_EQ(again->stringForKey("a\uFFFDb"), "\uFFFD<\uFFFD\uFFFD\uFFFDé");
    }
    // A strict reader takes a carriage return for a line break unless it is a reference.
    const std::string xml = PropertyList::string("a\r\nb\rc").xml();
    EXPECT_NE(xml.find("a&#13;\nb&#13;c"), std::string::npos) << xml;
    EXPECT_EQ(PropertyList::parse(xml)->stringValue(), "a\r\nb\rc");
}

TEST(PropertyList, ReadsTruthAsThePhoneDoes) {
    const std::pair<std::string, bool> texts[] = {
        {"YES", true},  {"yes", true}, {"true", true}, {"T", true},     {"1", true},
        {" \t9", true}, {"-02", true}, {"+1", true},   {"0007x", true}, {"0", false},
        {"NO", false},  {"", false},   {"on", false},  {"- 1", false},  {"0.5", false},
    };
    for (const auto& [text, expected] : texts)
        EXPECT_EQ(PropertyList::string(text).booleanValue(), expected) << text;
    EXPECT_TRUE(PropertyList::integer(-1).booleanValue());
    EXPECT_FALSE(PropertyList::integer(0).booleanValue());
    EXPECT_TRUE(PropertyList::real(0.25).booleanValue());
    EXPECT_TRUE(PropertyList::parse("<integer>18446744073709551615</integer>")->booleanValue());
    EXPECT_FALSE(PropertyList::data("1").booleanValue());
    EXPECT_FALSE(PropertyList::dictionary().booleanValue());
}

TEST(PropertyList, ReadsNumbersInSinglePrecision) {
    constexpr float infinity = std::numeric_limits<float>::infinity();
    const std::pair<std::string, float> texts[] = {
        {"0.1", 0.1F}, {" +.5x", 0.5F}, {"-3e2 ", -300}, {"1e999", infinity}, {"-1e999", -infinity},
        {"1e-999", 0}, {"0x10", 0},     {"inf", 0},      {"nan", 0},          {"", 0},
        {"+-1", 0},    {"1,5", 1},
    };
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
    auto list = *PropertyList::parse(everything);
    const PropertyList before = list;
    list.setValueForKey("empty", PropertyList::string("full"));
    list.setValueForKey("new", list);
    list.removeValueForKey("dates");
    list.removeValueForKey("absent");
    EXPECT_EQ(before.xml(), everything) << "a copy shares nothing";
    EXPECT_EQ(list.keys(), (std::vector<std::string>{"zebra & <é🤖>", "empty", "numbers", "data",
                                                     "uid", "bare", "aardvark", "new"}));
    EXPECT_EQ(list.stringForKey("empty"), "full");
    EXPECT_FALSE(list.hasKey("dates"));
    EXPECT_EQ(list.valueForKey("new")->stringForKey("empty"), "full");
    EXPECT_EQ(list.stringForKey("numbers"), std::nullopt);
    EXPECT_EQ(list.valueForKey("numbers"), before.valueForKey("numbers"));

    auto array = PropertyList::array();
    array.append(PropertyList::boolean(true));
    array.append(array);
    EXPECT_EQ(array.count(), 2U);
    EXPECT_EQ(array.valueAt(1)->count(), 1U);
    EXPECT_EQ(array.valueAt(2), std::nullopt);

    auto text = PropertyList::string("a");
    text.setValueForKey("k", text);
    text.append(text);
    EXPECT_EQ(text, PropertyList::string("a"));
    EXPECT_EQ(text.valueForKey("k"), std::nullopt);
}

TEST(PropertyList, TellsTypesAndValuesApart) {
    EXPECT_FALSE(PropertyList::integer(1) == PropertyList::boolean(true));
    EXPECT_FALSE(PropertyList::integer(1) == PropertyList::real(1));
    EXPECT_FALSE(PropertyList::string("a") == PropertyList::data("a"));
    EXPECT_EQ(PropertyList::real(std::nan("")), PropertyList::real(std::nan("")));
    EXPECT_FALSE(*PropertyList::parse("<array><true/></array>") ==
                 *PropertyList::parse("<array><true/><true/></array>"));
    EXPECT_FALSE(*PropertyList::parse("<integer>18446744073709551615</integer>") ==
                 PropertyList::integer(-1));
}

TEST(PropertyList, DescribesItselfAsThePhonePrints) {
    EXPECT_EQ(PropertyList::string("a \"b\"").description(), "a \"b\"");
    EXPECT_EQ(PropertyList::boolean(true).description(), "1");
    EXPECT_EQ(PropertyList::real(100000).description(), "100000");
    EXPECT_EQ(PropertyList::real(0.1).description(), "0.1");
    EXPECT_EQ(PropertyList::parse("<date>1999-12-31T23:59:59Z</date>")->description(),
              "1999-12-31 23:59:59 +0000");
    auto list = *PropertyList::parse(document(
        "<dict><key>a b</key><array><string>x</string><dict/></array><key>n</key><integer>-1"
        "</integer><key>d</key><data>AQIDBAU=</data><key>t</key><string>é🤖\n\"\\\x01</string>"
        "</dict>"));
    EXPECT_EQ(list.description(), "{\n"
                                  "    \"a b\" =     (\n"
                                  "        x,\n"
                                  "                {\n"
                                  "        }\n"
                                  "    );\n"
                                  "    n = \"-1\";\n"
                                  "    d = <01020304 05>;\n"
                                  "    t = \"\\U00e9\\Ud83e\\Udd16\\n\\\"\\\\\\001\";\n"
                                  "}");
    auto again = PropertyList::parse(list.description());
    ASSERT_TRUE(again);
    EXPECT_EQ(again->stringForKey("t"), list.stringForKey("t"));
    EXPECT_EQ(again->valueForKey("d"), list.valueForKey("d"));
}

} // namespace
} // namespace dubrix
