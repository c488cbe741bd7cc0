#pragma once

#include "files/Result.h"

#include <map>
#include <string>

namespace dubrix {

/// The symbolic links of a bundle: the name of each, relative to the bundle folder, and the text
/// it holds.
using LinkTargets = std::map<std::string, std::string, std::less<>>;

/// Fails when a link of the bundle leads outside: when its text is absolute or climbs above the
/// bundle folder, on its own or by way of other links of the bundle. A link that leads to nothing
/// inside is allowed, one that leads around in a circle is not.
Outcome checkLinkTargets(const LinkTargets& links);

} // namespace dubrix
