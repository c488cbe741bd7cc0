#include "formats/packing/Deflate.h"

#include <libdeflate.h>

namespace dubrix {

std::uint32_t checksum(std::string_view bytes, std::uint32_t before) {
    return bytes.empty() ? before : libdeflate_crc32(before, bytes.data(), bytes.size());
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
