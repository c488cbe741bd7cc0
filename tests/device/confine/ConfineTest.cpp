#include "device/confine/GivenFile.h"
#include "device/confine/ProgressBar.h"
#include "device/confine/ResultFile.h"
#include "device/confine/VisibleText.h"
#include "files/FileTree.h"
#include "tests/device/DeviceFolder.h"

#include <fcntl.h>
#include <pty.h>

namespace dubrix {

namespace fs = std::filesystem;

static Result<ResultFile> begun(const fs::path& file, ResultFile::Existing existing,
                                const std::string& bytes) {
    Result<ResultFile> result = ResultFile::begin(file.native(), existing);
    EXPECT_TRUE(!result || writeAll(result->descriptor(), bytes));
    return result;
}

TEST(GivenFileTest, whatAWindowAsksForIsReachedWithoutLinksAndOffTheDevice) {
    const TemporaryFolder temporary;
    const fs::path folder = fs::canonical(temporary.path());
    const fs::path device = folder / "device";
    fs::create_directories(device / "var/Inside.app");
    fs::create_directories(folder / "place/Outside.app");
    fs::create_directories(folder / "place/plain");
    putFile(folder / "place/a.ipa", "bytes");
    putFile(folder / "place/empty.ipa", "");
    putFile(device / "var/b.ipa", "bytes");
    fs::create_symlink("a.ipa", folder / "place/link.ipa");
    fs::create_directory_symlink("place", folder / "way");
    fs::create_directory_symlink(folder / "place/plain", folder / "place/Link.app");
    ASSERT_EQ(::mkfifo((folder / "place/pipe.ipa").c_str(), 0600), 0);
    const struct {
        std::string path;
        Given kind;
        bool given;
    } cases[] = {
        {folder / "place/a.ipa", Given::Archive, true},
        {folder / "place//./a.ipa", Given::Archive, true},
        {device / "var/b.ipa", Given::Archive, true},
        {folder / "place/link.ipa", Given::Archive, false},
        {folder / "way/a.ipa", Given::Archive, false},
        {folder / "place/../place/a.ipa", Given::Archive, false},
        {folder / "place/empty.ipa", Given::Archive, false},
        {"/bin/true", Given::Archive, true}, // by a link at the root, on most systems
        {"/dev/zero", Given::Archive, false},
        {"/proc/self/environ", Given::Archive, false},
        {"a.ipa", Given::Archive, false},
        {"", Given::Archive, false},
        {folder / "place/Outside.app", Given::Folder, true},
        {folder / "place/Outside.app/", Given::Folder, true},
        {folder / "place/plain", Given::Folder, false},
        {folder / "place/Link.app", Given::Folder, false},
        {device / "var/Inside.app", Given::Folder, false},
        {folder / "place/a.ipa", Given::Folder, false},
        {"/", Given::Folder, false},
    };
    for (const auto& [path, kind, given] : cases)
        EXPECT_EQ(openAskedFor(path, kind, device.native()).isOpen(), given) << path;
    // The person's own word leads through links.
    EXPECT_TRUE(openNamed(folder / "way/link.ipa", Given::Archive).isOpen());
    EXPECT_FALSE(openNamed(folder / "place/pipe.ipa", Given::Archive).isOpen());
}

TEST(ResultFileTest, isThereWholeOrNotAtAll) {
    const TemporaryFolder folder;
    const fs::path file = folder / "a.ipa";
    using enum ResultFile::Existing;
    const mode_t before = ::umask(077);
    putFile(file, "old");
    ASSERT_TRUE(begun(file, Replaced, "half"));
    EXPECT_EQ(contentsOf(file), "old");
    // Two at once, to be told apart to the end.
    Result<ResultFile> one = begun(file, Replaced, "one");
    Result<ResultFile> other = begun(file, Replaced, "other");
    Result<ResultFile> kept = begun(file, Kept, "second");
    Result<ResultFile> third = begun(file, Kept, "third");
    ASSERT_TRUE(one && other && kept && third);
    EXPECT_EQ(*other->finish(), file.native());
    EXPECT_EQ(contentsOf(file), "other");
    EXPECT_EQ(*one->finish(), file.native());
    EXPECT_EQ(contentsOf(file), "one");
    EXPECT_EQ(*third->finish(), (folder / "a (2).ipa").native());
    EXPECT_EQ(*kept->finish(), (folder / "a (3).ipa").native());
    EXPECT_EQ(contentsOf(folder / "a (3).ipa"), "second");
    ::umask(before);
    EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(contentsBelow(folder.path()).size(), 3U);
    // What is no file is not replaced.
    ASSERT_EQ(::mkfifo((folder / "pipe").c_str(), 0600), 0);
    EXPECT_FALSE(begun(folder / "pipe", Replaced, ""));
    EXPECT_FALSE(begun(folder.path(), Replaced, ""));
    EXPECT_FALSE(begun(folder / "none/a.ipa", Replaced, ""));
}

TEST(ShownText, NothingThatCommandsATerminalPassesHoweverItArrives) {
    const struct {
        std::string bytes;
        std::string shown;
    } cases[] = {
        {"plain\ttext\n", "plain\ttext\n"},
        {"例 ä 😀 \u200d", "例 ä 😀 \u200d"},
        {"\u0800\U0003f000\U00100000", "\u0800\U0003f000\U00100000"}, // ends of what may be second
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
        {"a.ipa", 100, 200, "100% [############################] a.ipa"},
        {"grüße.ipa", 50, 21, " 50% [####....] grüße"},
        {"例例例.ipa", 50, 20, " 50% [####....] 例例"},
        {"a.ipa", 50, 16, " 50% [####....] "},
        {"a.ipa", 50, 8, " 50% a.i"},
        {"a.ipa", 50, 4, " 50%"},
    };
    for (const auto& each : cases)
        EXPECT_EQ(progressLine(each.title, each.percent, each.columns), each.line);

    const winsize size{.ws_row = 24, .ws_col = 21, .ws_xpixel = 0, .ws_ypixel = 0};
    int ends[2];
    ASSERT_EQ(::openpty(&ends[0], &ends[1], nullptr, nullptr, &size), 0);
    const Descriptor seen(ends[0]);
    Descriptor terminal(ends[1]);
    ::setenv("TERM", "xterm", 1);
    ProgressBar(terminal.get()).start("grüße.ipa", 50);
    terminal.close();
    std::string got;
    for (char byte = 0; ::read(seen.get(), &byte, 1) == 1;)
        got += byte;
    EXPECT_EQ(got, "\r 50% [####....] grüß\033[K\r\033[K")
        << "a letter in the last column makes some terminals begin a new line";
}

} // namespace dubrix
