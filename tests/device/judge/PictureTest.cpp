#include "device/judge/Pictures.h"

#include <gtest/gtest.h>

namespace dubrix {

namespace {

struct Recorder final : PictureWriter {
    std::string begin(const std::string& name) override {
        said += "begin " + name + "\n";
        return name == "refused.png" ? "No room" : "";
    }
    void write(std::string_view bytes) override { said += bytes; }
    std::string end() override {
        said += "\nend\n";
        return {};
    }

    std::string said;
};

using Answers = std::vector<std::string>;

} // namespace

TEST(ShotNames, AreWhatTheDriverSends) {
    ShotNames names;
    names.read(
        "tap x\n  shot  a b.png \r\nshot \"q\\\"uo\\\\te\\n.png\"\n# shot no.png\nshotgun x\n");
    names.read("shot \"open.png\ntype shot x\nshot late");
    EXPECT_FALSE(names.contains("late")) << "the line has not ended";
    names.read(".png");
    names.finish();
    names.read("shot " + std::string(ShotNames::longestLine, 'x') + "\nshot after.png\n");
    names.read(std::string("shot zero\0.png\n", 15));
    for (const char* name : {"a b.png", "q\"uo\\te\n.png", "late.png", "after.png"})
        EXPECT_TRUE(names.contains(name)) << name;
    for (const char* name :
         {"", "no.png", "open.png", "\"open.png", "late", "./late.png", "zero", "x"})
        EXPECT_FALSE(names.contains(name)) << name;
}

TEST(ShotNames, AScriptWithoutEndFillsNoMemory) {
    ShotNames names;
    for (int number = 0; number < 200'000; ++number)
        names.read("shot " + std::to_string(number) + "\n");
    EXPECT_TRUE(names.contains("0"));
    EXPECT_FALSE(names.contains("199999"));
    EXPECT_LE(names.held(), ShotNames::mostBytes);
}

TEST(PictureReader, TakesAllAndWritesWhatTheScriptAsksFor) {
    ShotNames names;
    for (const char* name : {"a.png", "empty.png", "refused.png"})
        names.add(name);
    const std::string sent = "a.png\n5\n12\n45a.png\n0\n../x\n3\nabcrefused.png\n2\nzz" +
                             std::string(PictureReader::longestName + 1, 'y') +
                             "\n1\n!empty.png\n0\na.png\n-1\na.png\n5\nabcde";
    const Answers expected = {"ok",
                              "ok",
                              "../x: the script does not ask for it",
                              "refused.png: No room",
                              "a file's name is too long",
                              "ok",
                              "a picture's size is not a number"};
    for (const std::size_t piece : {std::size_t{1}, std::size_t{3}, sent.size()}) {
        Recorder recorder;
        PictureReader reader(names, recorder);
        Answers answers;
        for (std::size_t at = 0; at < sent.size(); at += piece)
            for (std::string& answer : reader.read(std::string_view(sent).substr(at, piece)))
                answers.push_back(std::move(answer));
        EXPECT_EQ(answers, expected);
        EXPECT_EQ(recorder.said, "begin a.png\n12\n45\nend\nbegin a.png\n\nend\nbegin refused.png\n"
                                 "begin empty.png\n\nend\n");
    }
}

TEST(PictureReader, DrainsWhatIsTooLarge) {
    ShotNames names;
    names.add("a.png");
    Recorder recorder;
    PictureReader reader(names, recorder);
    EXPECT_TRUE(reader.read("a.png\n536870913\n").empty());
    const std::string zeros(std::size_t{1} << 20, '\0');
    for (int number = 0; number < 512; ++number)
        EXPECT_TRUE(reader.read(zeros).empty());
    EXPECT_EQ(reader.read("xa.png\n1\ny"), (Answers{"a.png: larger than 512 MiB", "ok"}));
    EXPECT_EQ(recorder.said, "begin a.png\ny\nend\n");
}

} // namespace dubrix
