#include "device/confine/ProgressBar.h"
#include "device/confine/VisibleText.h"

#include <gtest/gtest.h>

namespace dubrix {

TEST(ShownText, NothingThatCommandsATerminalPassesHoweverItArrives) {
    const struct {
        std::string bytes;
        std::string shown;
    } cases[] = {
        {"plain\ttext\n", "plain\ttext\n"},
        {"例 ä 😀 \u200d", "例 ä 😀 \u200d"},
        {"\U0003f000\U00100000", "\U0003f000\U00100000"}, // the ends of what may come second
        {"\033]52;c;AAAA\007", "\\x1b]52;c;AAAA\\x07"},
        {"\r\b\x7f", "\\x0d\\x08\\x7f"},
        {std::string("\0", 1), "\\x00"},
        {"\u009b31m\u0080\u009f\u00a0", "\\u009b31m\\u0080\\u009f\u00a0"},
        {"\u202egpj.\u2069\u200f\u061c\u2028", "\\u202egpj.\\u2069\\u200f\\u061c\\u2028"},
        // Bytes that are no letters: the old way to spell a control character, surrogates, too long
        // forms, beyond the last letter, an end that never came.
        {"\x9b", "\\x9b"},
        {"\xed\xa0\x80", "\\xed\\xa0\\x80"},
        {"\xc0\x9b\xe0\x80\x9b\xf0\x80\x80\x9b", "\\xc0\\x9b\\xe0\\x80\\x9b\\xf0\\x80\\x80\\x9b"},
        {"\xf4\x90\x80\x80\xf5", "\\xf4\\x90\\x80\\x80\\xf5"},
        {"a\xe4\xbe\033b\xc2", "a\\xe4\\xbe\\x1bb\\xc2"},
    };
    for (const auto& [bytes, shown] : cases) {
        for (std::size_t cut = 0; cut <= bytes.size(); ++cut) {
            VisibleText text;
            std::string got = text.take(bytes.substr(0, cut));
            got += text.take(bytes.substr(cut));
            got += text.end();
            EXPECT_EQ(got, shown) << cut;
        }
    }
}

TEST(ShownText, AProgressLineKeepsWithinTheTerminal) {
    const struct {
        const char* title;
        unsigned percent;
        unsigned columns;
        const char* line;
    } cases[] = {
        {"a.ipa", 0, 40, "  0% [..........] a.ipa"},
        {"a.ipa", 99, 40, " 99% [#########.] a.ipa"},
        {"a.ipa", 100, 40, "100% [##########] a.ipa"},
        {"grüße.ipa", 50, 21, " 50% [####....] grüße"},
        {"例例例.ipa", 50, 20, " 50% [####....] 例例"},
        {"a.ipa", 50, 16, " 50% [####....] "},
        {"a.ipa", 50, 8, " 50% a.i"},
        {"a.ipa", 50, 0, " 50%"},
    };
    for (const auto& each : cases)
        EXPECT_EQ(progressLine(each.title, each.percent, each.columns), each.line);
}

} // namespace dubrix
