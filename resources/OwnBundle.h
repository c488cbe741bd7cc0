#pragma once

#include "formats/lists/PropertyList.h"

namespace dubrix {

/// What the application's own bundle says of it: its Info.plist.
PropertyList ownInformation();

} // namespace dubrix
