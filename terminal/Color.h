#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace dubrix {

/// Red, green and blue, 0 to 1, gamma-encoded.
using TintColor = std::array<float, 3>;

/// The colour that "#rrggbb", "r,g,b" (whole numbers, 0 to 255) or one of CSS's names stands for;
/// nothing for any other text. Letter case does not count, nor do blanks around it and its numbers.
std::optional<TintColor> colorIn(std::string_view text);

/// "#rrggbb", each component to the nearest of 256 steps.
std::string textOf(const TintColor& color);

} // namespace dubrix
