#pragma once

#include "formats/images/RgbaImage.h"

#include <optional>
#include <string_view>

namespace dubrix {

/// The pixels of an image file: PNG of every kind, the phone's crushed PNG, or JPEG, told apart by
/// the first bytes. 16-bit samples are rounded to 8; grey, palette and transparent-colour images
/// become RGBA. Gamma and colour profiles are dropped: the values are taken as sRGB. Notes on the
/// orientation are not followed.
///
/// Nothing for other formats and for bytes that are damaged or cut short in any way that a decoder
/// notices, also when part of the pixels could be had. Nothing as well beyond `imagePixelLimit`;
/// the memory taken stays below six bytes a pixel of that limit for a PNG of either kind and twelve
/// for a JPEG, and a PNG too short for the size that it declares is refused before any is taken.
std::optional<RgbaImage> decodeImage(std::string_view bytes);

/// Whether the checksum at the end of a PNG's compressed data must be right.
enum class DataChecksum { Checked, Ignored };

/// The parts of `decodeImage`, for bytes of one format each.
std::optional<RgbaImage> decodePng(std::string_view bytes,
                                   DataChecksum checksum = DataChecksum::Checked);
std::optional<RgbaImage> decodeCrushedPng(std::string_view bytes);
std::optional<RgbaImage> decodeJpeg(std::string_view bytes);

/// Whether `bytes` start like the phone's own variant of PNG, in which the images of an
/// application's bundle are stored: the signature followed by a chunk "CgBI".
bool isCrushedPng(std::string_view bytes);

} // namespace dubrix
