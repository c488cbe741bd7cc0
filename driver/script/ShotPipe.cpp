#include "driver/script/ShotPipe.h"

#include "files/Descriptor.h"

#include <cerrno>
#include <unistd.h>

namespace dubrix {

namespace {

std::string readLine(int descriptor) {
    std::string line;
    char character = 0;
    while (true) {
        const ssize_t got = ::read(descriptor, &character, 1);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0 || character == '\n')
            return line;
        line += character;
    }
}

} // namespace

std::string ShotPipe::save(std::string_view name, std::string_view bytes) const {
    if (name.find('\n') != std::string_view::npos)
        return "a file's name must be one line";
    const std::string header = std::string(name) + "\n" + std::to_string(bytes.size()) + "\n";
    if (!writeAll(out_, header) || !writeAll(out_, bytes))
        return "the desktop side does not take pictures any more";
    const std::string answer = readLine(in_);
    if (answer == "ok")
        return {};
    return answer.empty() ? "the desktop side gave no answer" : answer;
}

} // namespace dubrix
