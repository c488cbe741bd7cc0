#pragma once

#include <clocale>
#include <string_view>

namespace dubrix {

/// While it lives, the calling thread's encoding is UTF-8 if `name` is UTF-8, and that of the "C"
/// locale if not. libarchive writes a name's bytes as they are and marks them as UTF-8 where that
/// is the thread's encoding. Changes nothing where the system lacks such a locale.
class NameEncoding {
public:
    explicit NameEncoding(std::string_view name);
    ~NameEncoding();
    NameEncoding(const NameEncoding&) = delete;
    NameEncoding& operator=(const NameEncoding&) = delete;

private:
    locale_t before_;
};

} // namespace dubrix
