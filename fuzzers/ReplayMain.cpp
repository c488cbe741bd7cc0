#include "fuzzers/Target.h"

#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <unistd.h>

namespace fs = std::filesystem;
using namespace dubrix::fuzz;

namespace {

int writeSeeds(const fs::path& folder) {
    int number = 0;
    for (const std::string& seed : seeds()) {
        std::ofstream stream(folder / ("seed-" + std::to_string(++number)), std::ios::binary);
        require((stream << seed).flush().good(), "a seed can be written");
    }
    return 0;
}

/// The file itself, or the files of the folder in the order of their names; nothing where nothing
/// is.
std::set<fs::path> filesAt(const fs::path& path) {
    if (fs::is_regular_file(path))
        return {path};
    std::error_code none;
    const fs::directory_iterator entries(path, none);
    return {begin(entries), end(entries)};
}

constexpr std::size_t largestKept = std::size_t{16} << 10;

/// What is tried stands in the file `last` meanwhile, so that it is there after a crash of any
/// kind.
int replay(std::vector<std::string> inputs, std::size_t mutations, const fs::path& last) {
    const int file = ::open(last.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    const auto trial = [file](const std::string& input) {
        const auto size = static_cast<off_t>(input.size());
        require(::pwrite(file, input.data(), input.size(), 0) == size &&
                    ::ftruncate(file, size) == 0,
                "the input can be noted");
        tryInput(input);
    };
    for (const std::string& input : inputs)
        trial(input);
    const std::size_t whole = inputs.size();
    Random random(1);
    for (std::size_t count = 0; count < mutations; ++count) {
        const std::string& input = anyOf(inputs, random);
        std::string changed =
            once(2, random) ? restructured(input, random) : withChangedBytes(input, random);
        trial(changed);
        // Some go on from where others have come, as long as they stay small.
        if (changed.size() > largestKept)
            continue;
        if (inputs.size() < 8 * whole)
            inputs.push_back(std::move(changed));
        else if (once(4, random))
            inputs[whole + below(inputs.size() - whole, random)] = std::move(changed);
    }
    fs::remove(last);
    std::printf("%zu inputs and %zu changed ones\n", whole, mutations);
    return 0;
}

} // namespace

/// seeds FOLDER: writes the seeds there.
/// try MUTATIONS LAST [PATH...]: tries the seeds, the files at the paths, and as many inputs
/// changed from those, the same ones each time. LAST is the file for the input that is tried.
int main(int count, char** arguments) {
    const std::vector<std::string> words(arguments + 1, arguments + count);
    if (words.size() == 2 && words[0] == "seeds")
        return writeSeeds(words[1]);
    if (words.size() < 3 || words[0] != "try") {
        std::fprintf(stderr, "Usage: %s seeds FOLDER | try MUTATIONS LAST [PATH...]\n",
                     arguments[0]);
        return 2;
    }
    std::vector<std::string> inputs = seeds();
    for (std::size_t index = 3; index < words.size(); ++index)
        for (const fs::path& file : filesAt(words[index])) {
            std::ifstream stream(file, std::ios::binary);
            inputs.emplace_back(std::istreambuf_iterator<char>(stream),
                                std::istreambuf_iterator<char>());
        }
    return replay(std::move(inputs), std::stoul(words[1]), words[2]);
}
