#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace dubrix {

/// Whether `bytes` start like the phone's own variant of PNG, in which the images of an
/// application's bundle are stored: the signature followed by a chunk "CgBI".
bool isCrushedPng(std::string_view bytes);

/// The same image as a standard PNG stream, of the same size and interlacing; any PNG decoder reads
/// it. Nothing for bytes that are damaged, cut short, beyond `imagePixelLimit`, followed by
/// more data than the size declares, or no crushed PNG.
///
/// A crushed PNG differs from the standard in that its data is deflated without the zlib frame
/// (bit 0x10000000 of the CgBI chunk's word), colours stand as blue, green, red, and colours are
/// premultiplied by alpha as (c * a + 127) / 255. Here they are divided again, rounded to nearest;
/// invisible pixels become transparent black. The lowest bits of the word tell of alpha: 6 means
/// that it is to be ignored, and all pixels come out opaque. Only images of 8 bits a sample without
/// a palette are known to exist; others give nothing. All other chunks are dropped, with them
/// colour profiles: the values are sRGB.
///
/// The result's data is not compressed, since it is meant to be decoded at once: about four bytes
/// a pixel.
std::optional<std::string> standardPngFromCrushed(std::string_view bytes);

} // namespace dubrix
