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

} // namespace

TEST(ShotNames, AreWhatTheDriverSendsAndFillNoMemory) {
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
    for (const char* name : {"", "no.png", "open.png", "\"open.png", "late", "zero", "x"})
        EXPECT_FALSE(names.contains(name)) << name;
    for (int number = 0; number < 200'000; ++number)
        names.read("shot " + std::to_string(number) + "\n");
    EXPECT_TRUE(names.contains("0"));
    EXPECT_FALSE(names.contains("199999"));
    EXPECT_LE(names.held(), ShotNames::mostBytes);
}

TEST(PictureReader, DrainsWhatIsTooLargeOrRefused) {
    ShotNames names;
    for (const char* name : {"a.png", "refused.png"})
        names.add(name);
    Recorder recorder;
    PictureReader reader(names, recorder);
    EXPECT_TRUE(reader.read("a.png\n536870913\n").empty());
    const std::string zeros(std::size_t{64} << 20, '\0');
    for (int number = 0; number < 8; ++number)
        EXPECT_TRUE(reader.read(zeros).empty());
    EXPECT_EQ(reader.read("xa.png\n1\nyrefused.png\n2\nzza.png\n0\n"),
              (std::vector<std::string>{"a.png: larger than 512 MiB", "ok", "refused.png: No room",
                                        "ok"}));
    EXPECT_EQ(recorder.said, "begin a.png\ny\nend\nbegin refused.png\nbegin a.png\n\nend\n");
}

} // namespace dubrix
