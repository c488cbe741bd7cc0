#pragma once

#include "formats/images/RgbaImage.h"

#include <optional>
#include <string>

namespace dubrix {

/// The icons of applications.
class ApplicationIcons {
public:
    virtual ~ApplicationIcons() = default;

    /// The icon of the application whose bundle folder has this path, in the variant that suits a
    /// square of `pixels` by `pixels` best; its own size may be another. Nothing when the bundle
    /// has no icon that can be drawn. Reads files; any thread, several at once.
    virtual std::optional<RgbaImage> iconOfBundle(const std::string& path,
                                                  unsigned pixels) const = 0;
};

} // namespace dubrix
