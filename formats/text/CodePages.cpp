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
    static constexpr std::u16string_view upperHalf =
        u"\u00A0ÀÁÂÃÄÅÇÈÉÊËÌÍÎÏÐÑÒÓÔÕÖÙÚÛÜÝÞµ×÷©¡¢£⁄¥ƒ§¤’“«‹›ﬁﬂ®–†‡·¦¶•‚„”»…‰¬¿"
        u"¹ˋ´ˆ˜¯˘˙¨²˚¸³˝˛ˇ—±¼½¾àáâãäåçèéêëìÆíªîïðñŁØŒºòóôõöæùúûıüýłøœßþÿ\uFFFD\uFFFD";
    return byte < 0x80 ? byte : upperHalf[byte - 0x80];
}

} // namespace dubrix
