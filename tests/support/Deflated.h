#pragma once

#include <string>
#include <zlib.h>

namespace dubrix {

/// Deflates in the frame that `windowBits` asks zlib for, by default in none.
inline std::string deflated(const std::string& bytes, int windowBits = -MAX_WBITS) {
    z_stream stream{};
    deflateInit2(&stream, 9, Z_DEFLATED, windowBits, 8, Z_DEFAULT_STRATEGY);
    std::string packed(deflateBound(&stream, bytes.size()), '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
    stream.avail_in = static_cast<uInt>(bytes.size());
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    deflate(&stream, Z_FINISH);
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    return packed;
}

} // namespace dubrix
