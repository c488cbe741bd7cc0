#include "fuzzers/lists/Lists.h"

namespace dubrix::fuzz {

void tryInput(std::string_view bytes) {
    requireSound(bytes, readXmlPropertyList(bytes));
}

std::vector<std::string> seeds() {
    using namespace std::string_literals;
    const char* const scalars =
        "<array><integer> 0x1F </integer><integer>-9223372036854775808</integer>"
        "<integer>+18446744073709551615</integer><real>1e-320</real><real>-inf</real>"
        "<real>.5</real><date>1-02-29T00:00:00Z</date><data>\n\tAAEC\n\t/w==</data></array>";
    const char* const markup =
        "<?xml version='1.0' encoding=\"iso-8859-1\"?>\n<!-- - --><!DOCTYPE plist [<!ENTITY a "
        "\"b\">]><?i?><plist version = \"1.0\" ><dict ><key/><string>\xe9&#x1F33f;&#38;&quot;"
        "<![CDATA[<&]]><!--c-->.</string><key>CF$UID</key><true></true></dict></plist >\n";
    std::vector<std::string> all = {
        scalars,
        markup,
        "<dict><key>CF$UID</key><integer>4294967295</integer></dict>",
        "\xef\xbb\xbf<plist><false/></plist>",
        "\xff\xfe<\0p\0l\0i\0s\0t\0>\0<\0t\0r\0u\0e\0/\0>\0<\0/\0p\0l\0i\0s\0t\0>\0"s,
    };
    for (const PropertyListNode& tree : sampleTrees())
        all.push_back(writeXmlPropertyList(tree));
    return all;
}

const std::vector<std::string>& vocabulary() {
    static const std::vector<std::string> words =
        wordsOf("<dict>|</dict>|<dict/>|<array>|</array>|<key>|</key>|<string>|</string>|<integer>|"
                "</integer>|<real>|</real>|<date>|</date>|<data>|</data>|<true/>|<false/>|<plist>|"
                "</plist>|<!--|-->|<![CDATA[|]]>|<?|?>|<!DOCTYPE|&#|&amp;|&#x10FFFF;|&#xD800;|&#0;|"
                "CF$UID|encoding='iso-8859-1'|0x|infinity|nan|1e|0000-01-01T00:00:00Z");
    return words;
}

std::string restructured(const std::string& bytes, Random& random) {
    auto tree = readXmlPropertyList(bytes);
    if (!tree)
        return withChangedBytes(bytes, random);
    changeTree(*tree, random);
    return writeXmlPropertyList(*tree);
}

} // namespace dubrix::fuzz
