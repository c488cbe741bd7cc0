#include "formats/text/CodePages.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <iconv.h>
#include <memory>
#include <type_traits>

namespace dubrix {

namespace {

/// The system knows hundreds, some with a history of faults. Names come from hostile files, so only
/// simple, stateless encodings are asked for.
bool isAskedFor(std::string_view encoding) {
    constexpr std::array families = {"windows-125", "iso-8859-", "koi8-",  "macintosh",
                                     "shift_jis",   "euc-jp",    "euc-kr", "gb2312",
                                     "gbk",         "gb18030",   "big5",   "utf-32"};
    return encoding.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789-_") == encoding.npos &&
           std::ranges::any_of(families,
                               [&](const char* family) { return encoding.starts_with(family); });
}

} // namespace

std::optional<std::string> utf8FromCodePage(std::string_view bytes, const std::string& encoding) {
    if (!isAskedFor(encoding))
        return std::nullopt;
    const iconv_t conversion = ::iconv_open("UTF-8", encoding.c_str());
    if (conversion == reinterpret_cast<iconv_t>(-1))
        return std::nullopt;
    const std::unique_ptr<std::remove_pointer_t<iconv_t>, int (*)(iconv_t)> closing(conversion,
                                                                                    ::iconv_close);
    std::string text;
    std::array<char, 4096> piece{};
    // The input is not const for historical reasons; it is not written to.
    char* input = const_cast<char*>(bytes.data());
    std::size_t left = bytes.size();
    bool isWhole = false;
    while (!isWhole) {
        char* output = piece.data();
        std::size_t room = piece.size();
        isWhole =
            ::iconv(conversion, &input, &left, &output, &room) != static_cast<std::size_t>(-1);
        if (!isWhole && errno != E2BIG)
            return std::nullopt;
        text.append(piece.data(), piece.size() - room);
    }
    return text;
}

char32_t scalarFromNextStep(unsigned byte) {
    // clang-format off
    static constexpr std::array<char16_t, 128> upperHalf = {
        0x00A0, 0x00C0, 0x00C1, 0x00C2, 0x00C3, 0x00C4, 0x00C5, 0x00C7,
        0x00C8, 0x00C9, 0x00CA, 0x00CB, 0x00CC, 0x00CD, 0x00CE, 0x00CF,
        0x00D0, 0x00D1, 0x00D2, 0x00D3, 0x00D4, 0x00D5, 0x00D6, 0x00D9,
        0x00DA, 0x00DB, 0x00DC, 0x00DD, 0x00DE, 0x00B5, 0x00D7, 0x00F7,
        0x00A9, 0x00A1, 0x00A2, 0x00A3, 0x2044, 0x00A5, 0x0192, 0x00A7,
        0x00A4, 0x2019, 0x201C, 0x00AB, 0x2039, 0x203A, 0xFB01, 0xFB02,
        0x00AE, 0x2013, 0x2020, 0x2021, 0x00B7, 0x00A6, 0x00B6, 0x2022,
        0x201A, 0x201E, 0x201D, 0x00BB, 0x2026, 0x2030, 0x00AC, 0x00BF,
        0x00B9, 0x02CB, 0x00B4, 0x02C6, 0x02DC, 0x00AF, 0x02D8, 0x02D9,
        0x00A8, 0x00B2, 0x02DA, 0x00B8, 0x00B3, 0x02DD, 0x02DB, 0x02C7,
        0x2014, 0x00B1, 0x00BC, 0x00BD, 0x00BE, 0x00E0, 0x00E1, 0x00E2,
        0x00E3, 0x00E4, 0x00E5, 0x00E7, 0x00E8, 0x00E9, 0x00EA, 0x00EB,
        0x00EC, 0x00C6, 0x00ED, 0x00AA, 0x00EE, 0x00EF, 0x00F0, 0x00F1,
        0x0141, 0x00D8, 0x0152, 0x00BA, 0x00F2, 0x00F3, 0x00F4, 0x00F5,
        0x00F6, 0x00E6, 0x00F9, 0x00FA, 0x00FB, 0x0131, 0x00FC, 0x00FD,
        0x0142, 0x00F8, 0x0153, 0x00DF, 0x00FE, 0x00FF, 0xFFFD, 0xFFFD};
    // clang-format on
    return byte < 0x80 ? byte : upperHalf[byte - 0x80];
}

} // namespace dubrix
