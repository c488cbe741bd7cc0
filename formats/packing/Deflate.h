#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace dubrix {

/// The CRC-32 of zip and PNG of `bytes`, going on from that of what stands before them.
std::uint32_t checksum(std::string_view bytes, std::uint32_t before = 0);

/// `bytes` packed for speed, with zlib's frame; nothing where the memory does not suffice.
std::optional<std::string> zlibStream(std::string_view bytes);

/// Unpacks whole raw deflate streams in memory, one after the other. One thread at a time.
class WholeInflater {
public:
    WholeInflater();
    ~WholeInflater();
    WholeInflater(const WholeInflater&) = delete;
    WholeInflater& operator=(const WholeInflater&) = delete;

    /// Fills the `size` bytes at `target`; false unless `packed` begins with a sound stream of just
    /// as many.
    bool inflate(std::string_view packed, char* target, std::size_t size);

private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace dubrix
