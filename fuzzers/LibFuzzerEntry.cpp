#include "fuzzers/Target.h"

#include <algorithm>

using namespace dubrix::fuzz;

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t capacity);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    tryInput({reinterpret_cast<const char*>(data), size});
    return 0;
}

/// Half of the changes are libFuzzer's own, which learn from the memory that the code compares. Of
/// single numbers (trace-cmp) they do not: that doubles the time of an execution, and the numbers
/// that matter are known to the targets' own changes.
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t capacity, unsigned seed) {
    // Once a process: a new one costs as much as a small input does.
    static Random random(seed);
    if (once(2, random))
        return LLVMFuzzerMutate(data, size, capacity);
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const std::string changed =
        once(4, random) ? withChangedBytes(bytes, random) : restructured(bytes, random);
    if (changed.size() > capacity)
        return LLVMFuzzerMutate(data, size, capacity);
    std::copy(changed.begin(), changed.end(), data);
    return changed.size();
}
