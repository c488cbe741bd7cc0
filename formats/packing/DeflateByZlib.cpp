#include "formats/packing/Deflate.h"

#include <zlib.h>

namespace dubrix {

std::uint32_t checksum(std::string_view bytes, std::uint32_t before) {
    if (bytes.empty()) // whose null pointer would mean "begin anew"
        return before;
    return static_cast<std::uint32_t>(
        crc32_z(before, reinterpret_cast<const Bytef*>(bytes.data()), bytes.size()));
}

std::optional<std::string> zlibStream(std::string_view bytes) {
    uLongf size = compressBound(bytes.size());
    std::string packed(size, '\0');
    if (compress2(reinterpret_cast<Bytef*>(packed.data()), &size,
                  reinterpret_cast<const Bytef*>(bytes.data()), bytes.size(), Z_BEST_SPEED) != Z_OK)
        return std::nullopt;
    packed.resize(size);
    return packed;
}

struct WholeInflater::State {
    z_stream stream{};
    bool isReady = inflateInit2(&stream, -MAX_WBITS) == Z_OK;
};

WholeInflater::WholeInflater() : state_(std::make_unique<State>()) {}

WholeInflater::~WholeInflater() {
    inflateEnd(&state_->stream);
}

bool WholeInflater::inflate(std::string_view packed, char* target, std::size_t size) {
    z_stream& stream = state_->stream;
    if (!state_->isReady || inflateReset(&stream) != Z_OK)
        return false;
    // zlib's input pointer is not const for historical reasons; it does not write through it.
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(packed.data()));
    stream.avail_in = static_cast<uInt>(packed.size());
    stream.next_out = reinterpret_cast<Bytef*>(target);
    stream.avail_out = static_cast<uInt>(size);
    return ::inflate(&stream, Z_FINISH) == Z_STREAM_END && stream.avail_out == 0;
}

} // namespace dubrix
