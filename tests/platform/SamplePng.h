#pragma once

#include "tests/formats/ImageFiles.h"

#include <png.h>

namespace dubrix {

/// A small picture for who needs one: eight bits a sample with alpha, whatever kind is asked for.
struct SamplePng {
    SamplePng(const std::array<int, 4>&) {}
    static std::string bytes() { return pngOf(samplePixels(21 * 11), 21); }
};

} // namespace dubrix
