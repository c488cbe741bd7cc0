#pragma once

#include "fuzzers/Target.h"

#include <cstdint>

namespace dubrix::fuzz {

/// A number from 0 to `limit` - 1; 0 when `limit` is 0.
std::size_t below(std::size_t limit, Random& random);
/// True once in `times`.
bool once(std::size_t times, Random& random);

/// A number at which code is apt to stumble: a power of two, one beside it, or any.
std::uint64_t troublesome(Random& random);

/// One to four small changes of bytes, pieces of the vocabulary put in among them.
std::string withChangedBytes(std::string bytes, Random& random);

/// Pieces that end with one of those bytes moved, doubled or begun with a piece of the vocabulary.
std::string withMovedPieces(std::string_view bytes, std::string_view ends, Random& random);

/// What stands between the bars.
std::vector<std::string> wordsOf(std::string_view text);

template<class Container>
auto& anyOf(Container& container, Random& random) {
    return container[below(std::size(container), random)];
}

template<class Use>
void eachLine(std::string_view text, Use use) {
    for (std::size_t end = 0; end != text.npos; text.remove_prefix(end == text.npos ? 0 : end + 1))
        use(text.substr(0, end = text.find('\n')));
}

} // namespace dubrix::fuzz
