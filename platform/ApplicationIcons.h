#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace dubrix {

/// The icons of applications.
class ApplicationIcons {
public:
    virtual ~ApplicationIcons() = default;

    /// Pixels in rows from the top without gaps, four bytes each: red, green, blue, alpha, sRGB,
    /// colours not multiplied by alpha.
    struct Picture {
        std::uint32_t width = 0;
        std::uint32_t height = 0;
        std::unique_ptr<std::uint8_t[]> rgba;
    };

    /// The icon of the application whose bundle folder has this path, in the variant that suits a
    /// square of `pixels` by `pixels` best; its own size may be another. Nothing when the bundle
    /// has no icon that can be drawn. Reads files; any thread, several at once.
    virtual std::optional<Picture> iconOfBundle(const std::string& path, unsigned pixels) const = 0;
};

} // namespace dubrix
