#include "formats/lists/PropertyList.h"
#include "tests/support/TemporaryFolder.h"

#include <clocale>
#include <gtest/gtest.h>

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

/// Values of every kind, in the layout that the phone writes.
const std::string everything = document(R"(<dict>
	<key>zebra &amp; &lt;é🤖&gt;</key>
	<string> kept  blanks &amp; &lt;é🤖&gt; "'
</string>
	<key>numbers</key>
	<array>
		<integer>-9223372036854775808</integer>
		<integer>18446744073709551615</integer>
		<real>-0.0</real>
		<real>0.10000000000000001</real>
		<real>nan</real>
		<real>+infinity</real>
		<real>-infinity</real>
		<true/>
		<false/>
	</array>
	<key>others</key>
	<array>
		<date>1999-12-31T23:59:59Z</date>
		<data>
		AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA
		AQ==
		</data>
		<dict>
			<key>CF$UID</key>
			<integer>4294967295</integer>
		</dict>
		<array/>
		<dict/>
	</array>
	<key>aardvark</key>
	<string></string>
</dict>
)");

TEST(XmlPropertyList, KeepsEveryValueThroughXmlAndBinaryInAnyLocale) {
    const TemporaryFolder folder;
    putFile(folder / "source",
            "LC_NUMERIC\ndecimal_point \",\"\nthousands_sep \"\"\ngrouping -1\nEND LC_NUMERIC\n");
    std::system(("cd " + folder.path().native() + "; localedef -ci source ./comma 2>&-").c_str());
    ::setenv("LOCPATH", folder.path().c_str(), 1);
    ASSERT_TRUE(std::setlocale(LC_NUMERIC, "comma"));
    const auto list = PropertyList::parse(everything);
    ASSERT_TRUE(list);
    const auto fromBinary = PropertyList::parse(list->binary()).value();
    EXPECT_EQ(fromBinary, *list);
    EXPECT_EQ(fromBinary.xml(), everything);
    EXPECT_EQ(list->valueForKey("others")->valueAt(1),
              PropertyList::data(std::string(45, '\0') + '\1'));
    EXPECT_EQ(list->valueForKey("others")->valueAt(2)->type(), Type::Uid);
    EXPECT_EQ(PropertyList::real(0.1).description(), "0.1");
    std::setlocale(LC_ALL, "C");
    for (std::size_t length = 0; length < everything.size() - 1; ++length)
        EXPECT_FALSE(PropertyList::parse(everything.substr(0, length))) << length;
}

TEST(XmlPropertyList, ReadsTheSpellingsThatAreAllowed) {
    const std::string quick = "<plist><string>a</string></plist>";
    const std::pair<std::string, PropertyList> cases[] = {
        {"\xEF\xBB\xBF" + quick, PropertyList::string("a")},
        {" \n<?xml version='1.0'?><!-- <x> --><plist version = \"1.0\" ><string\n>a</string >"
         "</plist >\n<!-- end -->\n",
         PropertyList::string("a")},
        {"<!DOCTYPE plist [ <!ENTITY x \"]>\"> <!-- ' --> ]>" + quick, PropertyList::string("a")},
        {document("<string>&#65;&#x1F916;<!-- & -->&apos;<![CDATA[<&]]>]]&quot;</string>"),
         PropertyList::string("A🤖'<&]]\"")},
        {document("<string>\x01 \r\n\x7F</string>"), PropertyList::string("\x01 \r\n\x7F")},
        {document("<string/>"), PropertyList::string("")},
        {document("<integer> +0x1F </integer>"), PropertyList::integer(31)},
        {document("<real>-.5E1</real>"), PropertyList::real(-5)},
        {document("<real>1e-999</real>"), PropertyList::real(0)},
        {document("<real>-0." + std::string(400, '0') + "1e+9</real>"), PropertyList::real(-0.0)},
        {document("<real>1" + std::string(400, '0') + "e-400</real>"), PropertyList::real(1)},
        {document("<data>\n A Q\tI=\n</data>"), PropertyList::data("\1\2")},
        {document("<data>AQI</data>"), PropertyList::data("\1\2")},
        {document("<true></true>"), PropertyList::boolean(true)},
        {document("<dict>\n</dict>"), PropertyList::dictionary()},
        // What comes after the root element does not count.
        {document("<string>a</string>") + "\xFF\0<!--"s, PropertyList::string("a")},
        {"<string>a</string><plist/>garbage", PropertyList::string("a")},
        {"<!-- \xFF -->" + quick, PropertyList::string("a")}};
    for (const auto& [input, value] : cases)
        EXPECT_EQ(PropertyList::parse(input), value) << input;
    EXPECT_EQ(PropertyList::parse("<date>1-02-03T04:05:06Z</date>"),
              PropertyList::parse("<date>0001-02-03T04:05:06Z</date>"));
}

TEST(XmlPropertyList, ReadsTheEncodingThatADocumentDeclares) {
    const auto declaring = [](const std::string& name, const std::string& text) {
        return "<?xml version=\"1.0\" encoding=\"" + name + "\"?><plist><string>" + text +
               "</string></plist>";
    };
    // Some names do not tell, or tell a lie.
    for (const auto& [encoding, bytes, text] : {std::tuple("ISO-8859-1", "\xE9", "é"),
                                                {"Windows-1252", "Caf\xE9 \x80", "Café €"},
                                                {"EBCDIC", "a\xC3\xA9", "aé"},
                                                {"x-unknown", "a\xE9", "a\uFFFD"},
                                                {"UTF-16", "\xC3\xA9", "é"},
                                                {"UTF-32", "\xC3\xA9", "é"},
                                                {"Shift_JIS", "\x83", "\uFFFD"},
                                                {"utf-8//IGNORE", "\xC3\xA9", "é"}})
        EXPECT_EQ(PropertyList::parse(declaring(encoding, bytes)), PropertyList::string(text))
            << encoding;
    EXPECT_FALSE(PropertyList::parse(declaring("UTF-8", "\xE9")));
    EXPECT_EQ(PropertyList::parse(declaring("gb2312", std::string(5000, 'a'))),
              PropertyList::string(std::string(5000, 'a')));

    for (const std::string text : {"<plist><string>a</string></plist>", "{ k = \"a\"; }"}) {
        std::string little, big, widest = "\xFF\xFE\0\0"s;
        for (const char character : text) {
            (little += character) += '\0';
            (big += '\0') += character;
            (widest += character).append(3, '\0');
        }
        for (const std::string& bytes :
             {"\xFF\xFE" + little, "\xFE\xFF" + big, text[0] == '<' ? little : text,
              text[0] == '<' ? big : text, text[0] == '<' ? widest : text})
            EXPECT_EQ(PropertyList::parse(bytes), PropertyList::parse(text)) << text;
        EXPECT_FALSE(PropertyList::parse("\xFF\xFE" + little.substr(1)));
    }
}

TEST(XmlPropertyList, RefusesWhatIsDamaged) {
    const std::pair<std::string, std::vector<std::string_view>> scalars[] = {
        {"true", {"yes"}},
        {"set", {""}},
        {"null", {""}},
        {"integer", {"", "12x", "18446744073709551616", "-9223372036854775809"}},
        {"real", {"1,5", "1e999", "--1"}},
        {"date",
         {"", "2004-13-01T00:00:00Z", "2004-00-01T00:00:00Z", "2004-01-32T00:00:00Z",
          "2004-01-00T00:00:00Z", "2004-01-01T24:00:00Z", "2004-01-01T00:60:00Z",
          "2004-01-01T00:00:60Z", "0000-01-01T00:00:00Z", "2004-01-01T00:00:00",
          "20040-01-01T00:00:00Z"}},
        {"data", {"A", "A*==", "AQ==AQ==", "AQ=", "AQ==="}},
        {"string",
         {"&unknown;", "&#0;", "&#xD800;", "&#x110000;", "a & b", "\xC3(", "a</strong>", "<b>a</b>",
          "a</string><string>b", std::string_view("a\0b", 3),
          std::string_view("<![CDATA[a\0b]]>", 15)}}};
    for (const auto& [name, texts] : scalars)
        for (const std::string_view text : texts)
            EXPECT_FALSE(PropertyList::parse(
                document("<" + name + ">" + std::string(text) + "</" + name + ">")))
                << name << text;
    for (const char* const value :
         {"", "<dict><key>a</key></dict>", "<dict><string>a</string><string>b</string></dict>",
          "<dict><key>a</key><key>b</key></dict>", "<array><string>a</string></dict>",
          "<array>stray<string>a</string></array>", "<array><key>a</key></array>",
          "<string a=b>a</string>", "<string a='b'c='d'>a</string>", "<string a>b</string>",
          "<string a=>b</string>"})
        EXPECT_FALSE(PropertyList::parse(document(value))) << value;
    for (const char* const input :
         {"", " \n", "\xEF\xBB\xBF", "<?xml version=\"1.0\"?>", "<!DOCTYPE plist [", "<!-- -",
          "<!DOCTYPE plist [<!ENTITY x \"y\">]><plist><string>&x;</string></plist>"})
        EXPECT_FALSE(PropertyList::parse(input)) << input;
}

TEST(XmlPropertyList, DictionariesHaveSpecialKeys) {
    for (const std::string value : {"4294967296", "-1", "1</integer><key>b</key><integer>2"})
        EXPECT_EQ(
            PropertyList::parse("<dict><key>CF$UID</key><integer>" + value + "</integer></dict>")
                ->type(),
            Type::Dictionary)
            << "only a lone key with a small number is a UID";
    // Of a key that comes again the first value holds.
    std::string many;
    for (int number = 0; number < 100'000; ++number)
        many += "<key>" + std::to_string(number) + "</key><true/>";
    for (const std::string& others : {""s, many.substr(0, many.find("<key>40")), many}) {
        const auto list = PropertyList::parse(
            "<dict><key>a</key><true/><key>b</key><true/>" + others +
            "<key>a</key><false/><key>a</key><string>c</string><key>b</key><false/></dict>");
        ASSERT_TRUE(list);
        EXPECT_EQ(PropertyList::parse(list->binary()), list);
        EXPECT_EQ(list, PropertyList::parse("<dict>" + others +
                                            "<key>b</key><true/><key>a</key><true/></dict>"));
    }
}

TEST(XmlPropertyList, StaysReadableWhateverTextIsPutIn) {
    auto list = PropertyList::dictionary();
    list.setValueForKey("a\0b"s, PropertyList::string("\xFF<\xF0\x9F\0é"s));
    for (const std::string& bytes : {list.xml(), list.binary()})
        EXPECT_EQ(PropertyList::parse(bytes)->stringForKey("a\uFFFDb"),
                  "\uFFFD<\uFFFD\uFFFD\uFFFDé");
    // Data is wrapped at column 76, and at twelve where nothing is left of it.
    const auto deep = PropertyList::parse("(((((((((<" + std::string(40, '7') + ">)))))))))");
    EXPECT_NE(deep->xml().find(std::string(9, '\t') + "d3d3d3d3d3d3\n"), std::string::npos);
    // A strict reader takes a carriage return for a line break unless it is a reference.
    const std::string xml = PropertyList::string("a\r\nb\rc").xml();
    EXPECT_NE(xml.find("a&#13;\nb&#13;c"), std::string::npos) << xml;
    EXPECT_EQ(PropertyList::parse(xml)->stringValue(), "a\r\nb\rc");
}

} // namespace
} // namespace dubrix
