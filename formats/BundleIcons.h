#pragma once

#include "formats/PropertyList.h"

#include <filesystem>
#include <string>
#include <vector>

namespace dubrix {

/// No icon with more pixels to a side is considered; the largest that bundles really hold have
/// 1024.
inline constexpr unsigned largestIconEdge = 2048;

/// The files of the bundle at `folder` that can be its icon, the best first, for a square of
/// `pixels` by `pixels`. `info` is the bundle's Info.plist. Empty when there is none.
///
/// The phone asks its sources in turn: the primary icon, the list at the top level, the primary
/// icon for tablets, the single name of CFBundleIconFile and at last "Icon". The files of an
/// earlier source come first; within one, the smallest that fills the square, then larger ones,
/// then smaller ones from large to small. A name stands for the file of exactly that name and for
/// its variants ("@2x", "@3x", "~iphone", "~ipad"), with and without ".png".
///
/// Values of a wrong type are passed over, as is what is no PNG by its first bytes (crushed ones
/// count) and whatever lies outside the bundle, by its name or through links. The paths are free
/// of links. Only heads of files are read: the rest may still prove damaged.
std::vector<std::filesystem::path> iconFilesOfBundle(const std::filesystem::path& folder,
                                                     const PropertyList& info, unsigned pixels);

} // namespace dubrix
