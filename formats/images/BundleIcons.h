#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace dubrix {

class PropertyList;

/// No icon with more pixels to a side is considered; the largest that bundles really hold have
/// 1024.
inline constexpr unsigned largestIconEdge = 2048;

/// The files of the bundle at `folder` that can be its icon, the best first, for a square of
/// `pixels` by `pixels`. `info` is the bundle's Info.plist. Empty when there is none.
///
/// The phone asks its sources in turn: the primary icon, the list at the top level and the primary
/// icon for tablets; where these give nothing, the single name of CFBundleIconFile, and at last
/// "Icon". A name stands for the file of exactly that name and for its variants ("@2x", "@3x",
/// "~iphone", "~ipad"), with and without ".png".
///
/// First come files that fill the square, so that nothing is enlarged: icons of a phone's home
/// screen (60 points, 57 in old bundles), of a tablet's (76, 83.5 or 72), then other ones, and
/// those for notifications, settings and search (20, 29, 40 and 50 points) last, because they may
/// be drawn differently; of one use those of the earlier source, and the smallest. Smaller files
/// follow, the largest first, those for notifications, settings and search again last. Points are
/// the edge by the scale in the name.
///
/// Values of a wrong type are passed over, as is what is no PNG by its first bytes (crushed ones
/// count) and whatever lies outside the bundle, by its name or through links. The paths are free
/// of links. Only heads of files are read: the rest may still prove damaged.
std::vector<std::filesystem::path> iconFilesOfBundle(const std::filesystem::path& folder,
                                                     const PropertyList& info, unsigned pixels);

} // namespace dubrix
