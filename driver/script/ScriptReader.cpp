#include "driver/script/ScriptReader.h"

#include <cerrno>
#include <poll.h>
#include <unistd.h>
#include <utility>

namespace dubrix {

std::optional<std::string> ScriptReader::nextLine() {
    while (!atEnd_) {
        const std::size_t end = pending_.find('\n');
        if (end != std::string::npos) {
            std::string line = pending_.substr(0, end);
            pending_.erase(0, end + 1);
            return line;
        }
        if (hasEnded_) {
            atEnd_ = true;
            return std::exchange(pending_, {});
        }
        if (!read())
            break;
    }
    return std::nullopt;
}

bool ScriptReader::read() {
    pollfd input{.fd = descriptor_, .events = POLLIN, .revents = 0};
    if (::poll(&input, 1, 0) <= 0)
        return false;
    char buffer[4096];
    const ssize_t got = ::read(descriptor_, buffer, sizeof buffer);
    if (got < 0 && (errno == EINTR || errno == EAGAIN))
        return false;
    hasEnded_ = got <= 0;
    if (got > 0)
        pending_.append(buffer, static_cast<std::size_t>(got));
    return true;
}

} // namespace dubrix
