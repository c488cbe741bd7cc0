#include "fuzzers/Target.h"

#include <algorithm>
#include <numeric>

namespace dubrix::fuzz {

namespace {

void overwriteNumber(std::string& bytes, std::size_t at, Random& random) {
    const std::size_t width = std::min(std::size_t{1} << below(4, random), bytes.size() - at);
    const bool isBigEndian = once(2, random);
    std::uint64_t number = troublesome(random);
    for (std::size_t index = 0; index < width; ++index, number >>= 8)
        bytes[at + (isBigEndian ? width - 1 - index : index)] = static_cast<char>(number & 0xFF);
}

void changeOnce(std::string& bytes, Random& random) {
    constexpr std::size_t longest = 64;
    const std::size_t at = below(bytes.size() + 1, random);
    const std::size_t length = std::min(1 + below(longest, random), bytes.size() - at);
    switch (below(6, random)) {
    case 0:
        return void(bytes.insert(at, anyOf(vocabulary(), random)));
    case 1:
        return void(bytes.erase(at, length));
    case 2:
        return void(bytes.insert(below(bytes.size() + 1, random), bytes.substr(at, length)));
    case 3:
        return void(bytes.insert(at, 1, static_cast<char>(random())));
    case 4:
        return overwriteNumber(bytes, at, random);
    default:
        if (at < bytes.size())
            bytes[at] = static_cast<char>(bytes[at] ^ (1U << below(8, random)));
    }
}

} // namespace

std::size_t below(std::size_t limit, Random& random) {
    return limit == 0 ? 0 : random() % limit;
}

bool once(std::size_t times, Random& random) {
    return below(times, random) == 0;
}

std::uint64_t troublesome(Random& random) {
    const std::uint64_t power = std::uint64_t{1} << below(64, random);
    switch (below(4, random)) {
    case 0:
        return power;
    case 1:
        return power - 1;
    case 2:
        return ~power + below(3, random);
    default:
        return std::uint64_t{random()} << 32 | random();
    }
}

std::string withChangedBytes(std::string bytes, Random& random) {
    for (std::size_t changes = 1 + below(4, random); changes > 0; --changes)
        changeOnce(bytes, random);
    return bytes;
}

std::vector<std::string> wordsOf(std::string_view text) {
    std::vector<std::string> words(1);
    for (const char byte : text)
        if (byte == '|')
            words.emplace_back();
        else
            words.back() += byte;
    return words;
}

std::string withMovedPieces(std::string_view bytes, std::string_view ends, Random& random) {
    std::vector<std::string> pieces(1);
    for (const char byte : bytes) {
        pieces.back() += byte;
        if (ends.find(byte) != ends.npos)
            pieces.emplace_back();
    }
    switch (below(4, random)) {
    case 0:
        std::swap(anyOf(pieces, random), anyOf(pieces, random));
        break;
    case 1:
        pieces.push_back(anyOf(pieces, random));
        break;
    case 2:
        pieces.push_back(withChangedBytes(anyOf(pieces, random), random));
        break;
    default:
        anyOf(pieces, random).insert(0, anyOf(vocabulary(), random));
    }
    return std::accumulate(pieces.begin(), pieces.end(), std::string());
}

} // namespace dubrix::fuzz
