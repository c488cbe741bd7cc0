#pragma once

#include <string>
#include <zlib.h>

namespace dubrix {

/// Deflates, in zlib's frame or, by default, in none.
inline std::string deflated(const std::string& bytes, int windowBits = -MAX_WBITS) {
    uLongf size = ::compressBound(bytes.size());
    std::string packed(size, '\0');
    ::compress2(reinterpret_cast<Bytef*>(packed.data()), &size,
                reinterpret_cast<const Bytef*>(bytes.data()), bytes.size(), 9);
    return windowBits > 0 ? packed.substr(0, size) : packed.substr(2, size - 6);
}

} // namespace dubrix
