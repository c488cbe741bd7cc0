#include "formats/lists/PropertyList.h"

#include <gtest/gtest.h>

#include <bit>

namespace dubrix {
namespace {

using namespace std::string_literals;

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

std::string repeated(std::string_view text, int times) {
    std::string result;
    for (int count = 0; count < times; ++count)
        result += text;
    return result;
}

std::string nestedBinary(int levels) {
    std::string bytes = "bplist00";
    std::string offsets;
    auto word = [](std::size_t number) {
        return std::string{static_cast<char>(number >> 8), static_cast<char>(number)};
    };
    for (int level = 1; level <= levels; ++level) {
        offsets += word(bytes.size());
        bytes += level == levels ? "\xA0"s : "\xA1" + word(static_cast<std::size_t>(level));
    }
    const std::string table = word(bytes.size());
    return bytes + offsets + "\0\0\0\0\0\0\2\2\0\0\0\0\0\0"s +
           word(static_cast<std::size_t>(levels)) + std::string(14, '\0') + table;
}

TEST(PropertyListBounds, DepthEndsAt256Levels) {
    for (auto [open, close] :
         {std::pair("<array>", "</array>"), std::pair("<dict><key>k</key>", "</dict>"),
          std::pair("(", ")"), std::pair("{k=", ";}")}) {
        const bool isXml = open[0] == '<';
        const std::string middle = isXml ? "<true/>" : "word";
        auto nested = [&, o = open, c = close](int levels) {
            return repeated(o, levels) + middle + repeated(c, levels);
        };
        EXPECT_TRUE(PropertyList::parse(nested(256))) << open;
        EXPECT_FALSE(PropertyList::parse(nested(257))) << open;
        EXPECT_FALSE(PropertyList::parse(nested(100000))) << open;
    }
    auto deepest = PropertyList::parse(nestedBinary(256));
    ASSERT_TRUE(deepest);
    EXPECT_TRUE(PropertyList::parse(deepest->xml()));
    EXPECT_FALSE(PropertyList::parse(nestedBinary(257)));
    EXPECT_FALSE(PropertyList::parse(nestedBinary(10000)));
}

TEST(PropertyListBounds, SharedObjectsAreReadButMayNotExplode) {
    auto shared = PropertyList::parse(binaryOf({"\xA3\1\1\2", "\xA1\2",
                                                "\x51"
                                                "a"}));
    ASSERT_TRUE(shared);
    EXPECT_EQ(*shared, *PropertyList::parse("((a),(a),a)"));

    std::vector<std::string> doubling; // 2^40 strings in 200 bytes
    for (char level = 1; level <= 40; ++level)
        doubling.push_back("\xA2"s + level + level);
    doubling.emplace_back("\x51"
                          "a");
    EXPECT_FALSE(PropertyList::parse(binaryOf(doubling)));
}

TEST(PropertyListBounds, OfADoubledKeyTheFirstValueHolds) {
    const auto list = PropertyList::parse(binaryOf({"\xD2\1\1\2\3", "\x51k", "\x09", "\x08"}));
    ASSERT_TRUE(list);
    EXPECT_EQ(list->xml(), PropertyList::parse("<dict><key>k</key><true/></dict>")->xml());
}

TEST(PropertyListBounds, CyclesGiveNothing) {
    EXPECT_FALSE(PropertyList::parse(binaryOf({"\xA1\0"s})));
    EXPECT_FALSE(PropertyList::parse(binaryOf({"\xA1\1"s, "\xA1\0"s})));
    EXPECT_FALSE(PropertyList::parse(binaryOf({"\xD1\1\0"s, "\x51k"})));
}

TEST(PropertyListBounds, ReadsEveryBinaryScalar) {
    const std::pair<std::string, std::string> cases[] = {
        {"\x10\xFF", "<integer>255</integer>"},
        {"\x11\xFF\xFF", "<integer>65535</integer>"},
        {"\x12\xFF\xFF\xFF\xFF", "<integer>4294967295</integer>"},
        {"\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF", "<integer>-1</integer>"},
        {"\x14\0\0\0\0\0\0\0\0\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"s,
         "<integer>18446744073709551615</integer>"},
        {"\x22\x3F\x80\0\0"s, "<real>1</real>"},
        {"\x23\xBF\xB9\x99\x99\x99\x99\x99\x9A", "<real>-0.1</real>"},
        {"\x33\xBF\xF0\0\0\0\0\0\0"s, "<date>2000-12-31T23:59:59Z</date>"},
        {"\x42\0\1"s, "<data>AAE=</data>"},
        {"\x5F\x10\x03"
         "abc",
         "<string>abc</string>"},
        {"\x63\0\xE9\xD8\x3E\xDD\x16"s, "<string>é🤖</string>"},
        {"\x80\x2A", "<dict><key>CF$UID</key><integer>42</integer></dict>"},
        {"\x09", "<true/>"},
    };
    for (const auto& [object, xml] : cases) {
        auto list = PropertyList::parse(binaryOf({object}));
        ASSERT_TRUE(list) << xml;
        EXPECT_EQ(*list, *PropertyList::parse(xml)) << xml << list->xml();
    }
}

TEST(PropertyListBounds, KeepsNullsAndDatesThatXmlCannotHold) {
    const std::string list =
        binaryOf({"\xD2\1\2\3\4",
                  "\x51"
                  "a",
                  "\x51"
                  "b",
                  "\0"s, "\xA5\5\3\6\7\10", "\x08", "\x33\x3F\xE0\0\0\0\0\0\0"s,
                  "\x33\x7F\xF8\0\0\0\0\0\0"s, "\x33\xC3\x3F\xFF\xFF\xFF\xFF\xFF\xFF"});
    auto value = PropertyList::parse(list);
    ASSERT_TRUE(value);
    EXPECT_EQ(value->valueForKey("a")->type(), PropertyList::Type::Null);
    EXPECT_EQ(value->valueForKey("b")->valueAt(0), PropertyList::boolean(false));
    EXPECT_EQ(value->valueForKey("b")->valueAt(1)->type(), PropertyList::Type::Null);
    EXPECT_EQ(*PropertyList::parse(value->binary()), *value);
    EXPECT_FALSE(PropertyList::dictionary() == *value);
    auto fromXml = PropertyList::parse(value->xml());
    ASSERT_TRUE(fromXml);
    EXPECT_EQ(*fromXml, *PropertyList::parse("<dict><key>b</key><array><false/><string/>"
                                             "<date>2001-01-01T00:00:00Z</date>"
                                             "<date>2001-01-01T00:00:00Z</date>"
                                             "<date>0001-01-01T00:00:00Z</date></array></dict>"));
    EXPECT_FALSE(value->description().empty());
}

TEST(PropertyListBounds, RefusesDamagedBinaries) {
    const std::vector<std::string> bad[] = {
        {"\x0F"},                  // fill byte
        {"\x20\x01"},              // real of one byte
        {"\x87\0\0\0\1\0\0\0\0"s}, // UID of more than 32 bits
        {"\x14\1\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0"s},
        {"\x5F\x13\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF"},
        {"\xAF\x13\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF"},
        {"\x5F\x51"
         "abc"}, // a length that is no integer
        {"\x54"
         "abc"},          // longer than the object area
        {"\x51\xE9"},     // neither ASCII nor UTF-8
        {"\x61\xD8\x3E"}, // lone surrogate
        {"\x53"
         "a\0b"s},
        {"\xA1\1"},             // reference to no object
        {"\xD1\1\1", "\x10\1"}, // number as key
        {"\xC1\1", "\x10\1"},   // set
        {"\x82\0\0\1"s},
    };
    for (const auto& objects : bad)
        EXPECT_FALSE(PropertyList::parse(binaryOf(objects)))
            << testing::PrintToString(objects.front());
    const std::string good = binaryOf({"\x51"
                                       "a"});
    ASSERT_TRUE(PropertyList::parse(good));
    for (std::size_t length = 6; length < good.size(); ++length) // before: a bare word
        EXPECT_FALSE(PropertyList::parse(good.substr(0, length))) << length;
    for (std::size_t fromEnd : {26U, 25U, 17U, 9U, 1U}) { // widths, count, top, table
        std::string damaged = good;
        damaged[good.size() - fromEnd] = '\x7F';
        EXPECT_FALSE(PropertyList::parse(damaged)) << fromEnd;
    }
}

TEST(PropertyListBounds, AHundredThousandKeysAreRead) {
    std::string xml = "<dict>";
    for (int number = 0; number < 100000; ++number)
        xml += "<key>k" + std::to_string(number) + "</key><integer>1</integer>";
    auto list = PropertyList::parse(xml + "</dict>");
    ASSERT_TRUE(list);
    EXPECT_EQ(list->keys().size(), 100000U);
    auto again = PropertyList::parse(list->binary());
    ASSERT_TRUE(again);
    EXPECT_EQ(*again, *list);
}

} // namespace
} // namespace dubrix
