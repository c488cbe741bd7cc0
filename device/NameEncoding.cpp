#include "device/NameEncoding.h"

#include "formats/Unicode.h"

namespace dubrix {

namespace {

/// Made once and kept: a thread may use it to the end.
locale_t localeFor(std::string_view name) {
    static const locale_t utf8 = ::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    static const locale_t bytes = ::newlocale(LC_CTYPE_MASK, "C", nullptr);
    return isUtf8(name) ? utf8 : bytes;
}

} // namespace

NameEncoding::NameEncoding(std::string_view name) : before_(::uselocale(localeFor(name))) {}

NameEncoding::~NameEncoding() {
    ::uselocale(before_);
}

} // namespace dubrix
