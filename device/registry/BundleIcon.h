#pragma once

#include "formats/images/RgbaImage.h"

#include <filesystem>
#include <optional>

namespace dubrix {

/// The icon of the bundle at `folder`, in the variant that suits a square of `pixels` by `pixels`
/// best; its own size may be another. Nothing when the bundle has no icon that can be drawn. Reads
/// files; any thread, several at once.
std::optional<RgbaImage> iconOfBundle(const std::filesystem::path& folder, unsigned pixels);

} // namespace dubrix
