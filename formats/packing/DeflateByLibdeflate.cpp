#include "formats/packing/Deflate.h"

#include <libdeflate.h>

namespace dubrix {

std::uint32_t checksum(std::string_view bytes, std::uint32_t before) {
    return bytes.empty() ? before : libdeflate_crc32(before, bytes.data(), bytes.size());
}

std::optional<std::string> zlibStream(std::string_view bytes) {
    constexpr int level = 2; // a seventh smaller than by 1, for little more time
    const std::unique_ptr<libdeflate_compressor, decltype(&libdeflate_free_compressor)> compressor(
        libdeflate_alloc_compressor(level), &libdeflate_free_compressor);
    if (!compressor)
        return std::nullopt;
    std::string packed(libdeflate_zlib_compress_bound(compressor.get(), bytes.size()), '\0');
    packed.resize(libdeflate_zlib_compress(compressor.get(), bytes.data(), bytes.size(),
                                           packed.data(), packed.size()));
    return packed;
}

struct WholeInflater::State {
    libdeflate_decompressor* const decompressor = libdeflate_alloc_decompressor();
};

WholeInflater::WholeInflater() : state_(std::make_unique<State>()) {}

WholeInflater::~WholeInflater() {
    libdeflate_free_decompressor(state_->decompressor);
}

bool WholeInflater::inflate(std::string_view packed, char* target, std::size_t size) {
    return state_->decompressor != nullptr &&
           libdeflate_deflate_decompress(state_->decompressor, packed.data(), packed.size(), target,
                                         size, nullptr) == LIBDEFLATE_SUCCESS;
}

} // namespace dubrix
