#include "driver/script/ScriptStep.h"
#include "driver/script/ShotPipe.h"
#include "files/Descriptor.h"
#include "tests/support/TemporaryFolder.h"

#include <fcntl.h>

namespace dubrix {

namespace {

/// The step, or what is wrong, in one line: "verb|target|text|seconds".
std::string parsed(const std::string& line) {
    const ScriptLine result = parseScriptLine(line);
    if (!result.step || !result.error.empty())
        return result.step ? "both" : result.error;
    const ScriptStep& step = *result.step;
    static const char* const verbs[] = {"tap",    "type", "wait", "gone", "expect",
                                        "absent", "shot", "hold", "drop"};
    return verbs[static_cast<int>(step.verb)] + ("|" + step.target) + "|" + step.text +
           (step.waits() ? "|" + std::to_string(static_cast<int>(step.seconds * 100)) : "");
}

} // namespace

TEST(Script, ReadsEveryFormOfAStep) {
    const std::string missing = "a name, text or file is missing";
    const std::string open = "a closing quote is missing";
    const std::string noNumber = "the seconds are not a number from 0 to 3600";
    const std::pair<const char*, std::string> cases[] = {
        {"", ""},
        {" \t# tap A\r", ""},
        {"  tap   New duplicate \r", "tap|New duplicate|"},
        {R"(tap "a \"b\" \\ c")", "tap|a \"b\" \\ c|"},
        {R"(expect "two\nlines")", "expect|two\nlines|"},
        {"type Name  My  App ", "type|Name|My  App"},
        {R"(type "Custom name" " x ")", "type|Custom name| x "},
        {R"(type "Custom name" plain text)", "type|Custom name|plain text"},
        {"wait Done. 2.5", "wait|Done.||250"},
        {R"(wait "Duplicates: 0" 3600)", "wait|Duplicates: 0||360000"},
        {"wait 5", "wait|5||1000"},
        {"gone Please wait... 60", "gone|Please wait...||6000"},
        {"hold it's \"here\"", "hold|it's \"here\"|"},
        {"drop /a folder/one.ipa", "drop|/a folder/one.ipa|"},
        {"tap", missing},
        {R"(expect "")", missing},
        {R"(tap "open\")", open},
        {R"(type Name "open)", open},
        {R"(type Name "a" b)", "there is more on the line than the step takes"},
        {R"(wait "a" -1)", noNumber},
        {R"(wait "a" 3601)", noNumber},
        {R"(wait "a" nan)", noNumber},
        {"Tap Ok", "there is no step named 'Tap'"}};
    for (const auto& [line, expected] : cases)
        EXPECT_EQ(parsed(line), expected) << line;
}

TEST(Script, APictureGoesOutWithItsNameAndSize) {
    const TemporaryFolder folder;
    const std::string bytes("a\0b", 3);
    for (const auto& [answer, result] : {std::pair("ok\n", ""),
                                         {"a: Is a directory\nmore", "a: Is a directory"},
                                         {"cut", "cut"},
                                         {"", "the desktop side gave no answer"}}) {
        putFile(folder / "pictures", "");
        putFile(folder / "answers", answer);
        const Descriptor pictures(::open((folder / "pictures").c_str(), O_WRONLY));
        const Descriptor answers(::open((folder / "answers").c_str(), O_RDONLY));
        EXPECT_EQ(ShotPipe(pictures.get(), answers.get()).save("a b.png", bytes), result);
        EXPECT_EQ(contentsOf(folder / "pictures"), "a b.png\n3\n" + bytes);
    }
    EXPECT_EQ(ShotPipe(-1, -1).save("a\nb", bytes), "a file's name must be one line");
    EXPECT_EQ(ShotPipe(-1, -1).save("a", bytes),
              "the desktop side does not take pictures any more");
}

} // namespace dubrix
