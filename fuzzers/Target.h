#pragma once

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace dubrix::fuzz {

/// Every choice comes from here, so a run is repeated by its seed.
using Random = std::mt19937;

/// What a target consists of. Each target's own file defines these four, and one program is made of
/// it with libFuzzer's main and one with the replay's.

/// Runs the code under test on one input and checks what must hold of it for any bytes; ends the
/// process by `require` when it does not.
void tryInput(std::string_view bytes);
/// Sound inputs that between them reach what the code can do.
std::vector<std::string> seeds();
/// Pieces that mean something in an input.
const std::vector<std::string>& vocabulary();
/// The input changed without breaking what holds it together (checksums, offsets, nesting), which a
/// change of bytes would hardly get past. Nothing to go by gives the input back.
std::string restructured(const std::string& bytes, Random& random);

/// Ends the process, saying what did not hold.
inline void require(bool holds, const char* statement) {
    if (holds)
        return;
    std::fprintf(stderr, "Does not hold: %s\n", statement);
    std::abort();
}

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
