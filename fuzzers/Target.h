#pragma once

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

} // namespace dubrix::fuzz
