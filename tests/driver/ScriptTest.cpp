#include "driver/script/ScriptStep.h"
#include "driver/script/ShotPipe.h"

#include <array>
#include <gtest/gtest.h>
#include <thread>
#include <unistd.h>

namespace dubrix {

namespace {

/// The step, or what is wrong, in one line: "verb|target|text|seconds".
std::string parsed(const std::string& line) {
    const ScriptLine result = parseScriptLine(line);
    if (!result.error.empty())
        return result.step ? "both" : "error: " + result.error;
    if (!result.step)
        return "nothing";
    const ScriptStep& step = *result.step;
    static const char* const verbs[] = {"tap",    "type", "wait", "gone", "expect",
                                        "absent", "shot", "hold", "drop"};
    std::string text = verbs[static_cast<int>(step.verb)];
    text += "|" + step.target + "|" + step.text;
    if (step.waits())
        text += "|" + std::to_string(static_cast<int>(step.seconds * 100));
    return text;
}

struct Pipe {
    Pipe() { EXPECT_EQ(::pipe(ends.data()), 0); }
    ~Pipe() {
        ::close(ends[0]);
        closeWriter();
    }
    void closeWriter() { ::close(std::exchange(ends[1], -1)); }
    void write(std::string_view bytes) const {
        EXPECT_EQ(::write(ends[1], bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    }
    std::string read(std::size_t size) const {
        std::string bytes(size, '\0');
        std::size_t done = 0;
        while (done < size) {
            const ssize_t got = ::read(ends[0], bytes.data() + done, size - done);
            if (got <= 0)
                break;
            done += static_cast<std::size_t>(got);
        }
        return bytes.substr(0, done);
    }

    std::array<int, 2> ends{};
};

} // namespace

TEST(ScriptStep, ReadsEveryForm) {
    const struct {
        const char* line;
        const char* expected;
    } cases[] = {
        {"", "nothing"},
        {" \t\r", "nothing"},
        {"# tap Duplicate", "nothing"},
        {"tap Duplicate", "tap|Duplicate|"},
        {"  tap   New duplicate \r", "tap|New duplicate|"},
        {R"(tap "a \"b\" \\ c")", "tap|a \"b\" \\ c|"},
        {R"(expect "two\nlines")", "expect|two\nlines|"},
        {R"(absent it's "here")", "absent|it's \"here\"|"},
        {"type Name", "type|Name|"},
        {"type Name  My  App ", "type|Name|My  App"},
        {R"(type "Custom name" " x ")", "type|Custom name| x "},
        {R"(type "Custom name" plain text)", "type|Custom name|plain text"},
        {"wait Done.", "wait|Done.||1000"},
        {"wait Done. 2.5", "wait|Done.||250"},
        {"wait Duplicates: 0 60", "wait|Duplicates: 0||6000"},
        {R"(wait "Duplicates: 0")", "wait|Duplicates: 0||1000"},
        {R"(wait "Duplicates: 0" 3600)", "wait|Duplicates: 0||360000"},
        {"wait 5", "wait|5||1000"},
        {"gone Please wait... 60", "gone|Please wait...||6000"},
        {"shot a folder/one.png", "shot|a folder/one.png|"},
        {"hold Fernleaf Notes", "hold|Fernleaf Notes|"},
        {"drop /a folder/one.ipa", "drop|/a folder/one.ipa|"},
        {"tap", "error: a name, text or file is missing"},
        {R"(expect "")", "error: a name, text or file is missing"},
        {R"(tap "open)", "error: a closing quote is missing"},
        {R"(tap "open\")", "error: a closing quote is missing"},
        {R"(type Name "open)", "error: a closing quote is missing"},
        {R"(tap "Ok" now)", "error: there is more on the line than the step takes"},
        {R"(type Name "a" b)", "error: there is more on the line than the step takes"},
        {R"(wait "a" soon)", "error: the seconds are not a number from 0 to 3600"},
        {R"(wait "a" -1)", "error: the seconds are not a number from 0 to 3600"},
        {R"(wait "a" 3601)", "error: the seconds are not a number from 0 to 3600"},
        {R"(wait "a" nan)", "error: the seconds are not a number from 0 to 3600"},
        {"Tap Ok", "error: there is no step named 'Tap'"},
    };
    for (const auto& [line, expected] : cases)
        EXPECT_EQ(parsed(line), expected) << line;
}

TEST(ShotPipe, SendsNameSizeAndBytesAndTakesTheAnswer) {
    const std::string bytes(300'000, '\0'); // more than a pipe holds at once
    const struct {
        const char* answer;
        std::string result;
    } cases[] = {{"ok\n", ""},
                 {"a: Is a directory\n", "a: Is a directory"},
                 {"cut", "cut"},
                 {"", "the desktop side gave no answer"}};
    for (const auto& [answer, result] : cases) {
        Pipe pictures, answers;
        answers.write(answer);
        answers.closeWriter();
        const std::string expected = "a b.png\n300000\n" + bytes;
        std::string received;
        std::thread desktop([&] { received = pictures.read(expected.size()); });
        EXPECT_EQ(ShotPipe(pictures.ends[1], answers.ends[0]).save("a b.png", bytes), result);
        desktop.join();
        EXPECT_TRUE(received == expected);
    }
    EXPECT_NE(ShotPipe(-1, -1).save("a\nb", bytes), "");
    EXPECT_EQ(ShotPipe(-1, -1).save("a", bytes),
              "the desktop side does not take pictures any more");
}

} // namespace dubrix
