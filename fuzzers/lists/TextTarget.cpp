#include "fuzzers/lists/Lists.h"

namespace dubrix::fuzz {

void tryInput(std::string_view bytes) {
    requireSound(bytes, readTextPropertyList(bytes));
}

std::vector<std::string> seeds() {
    using namespace std::string_literals;
    const char* const escapes =
        "{ a = \"\\a\\b\\f\\n\\r\\t\\v\\\\\\\"\\'\\001\\377\\U00e9\\uD83C\\udF3F\\q\"; "
        "b = {}; c = (); }";
    std::vector<std::string> all = {
        "// a table\n\"Duplicate\" = 'Dupliquer';\nshort;\n/* c */ $a_b = (1, 2.5, <00 fF>,);",
        escapes,
        "<0102 03>",
        "word",
        "\xfe\xff\0{\0a\0;\0}"s,
    };
    for (const PropertyListNode& tree : sampleTrees())
        all.push_back(describePropertyList(tree));
    return all;
}

const std::vector<std::string>& vocabulary() {
    static const std::vector<std::string> words = {
        "{",  "}",  "(",    ")",    "<",     ">",       "=",     ";",     ",",           "\"",
        "'",  "\\", "\\U",  "\\u",  "\\Ud8", "\\Udc00", "\\000", "\\377", "/*",          "*/",
        "//", "\n", "a=b;", "(a,)", "{a;}",  "<00>",    "/",     "-",     "\xef\xbb\xbf"};
    return words;
}

std::string restructured(const std::string& bytes, Random& random) {
    auto tree = readTextPropertyList(bytes);
    if (!tree)
        return withChangedBytes(bytes, random);
    changeTree(*tree, random);
    return describePropertyList(*tree);
}

} // namespace dubrix::fuzz
