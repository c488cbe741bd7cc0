#pragma once

#include <string_view>

namespace dubrix {

/// Whether the desktop may be asked to open an address that comes from the device: a web page
/// ("http" or "https") or a mail with nothing but "to", "subject" and "body". Mail programs have
/// more keys, some of which attach files, and some hand the values through a shell's or another
/// program's quotes: in a mail quotes, backslashes and control characters are refused also when
/// they are percent-encoded, but for line breaks and tabs in the body. At most 2,048 bytes, of
/// which each is one that stands in addresses unencoded; an apostrophe does not.
bool mayBeOpened(std::string_view address);

} // namespace dubrix
