#include "driver/ScriptReader.h"

#include <cerrno>
#include <thread>
#include <unistd.h>

namespace dubrix {

void ScriptReader::Queue::add(std::string line, bool last) {
    const std::lock_guard lock(mutex);
    lines.push_back(std::move(line));
    ended = last;
}

ScriptReader::ScriptReader(int descriptor) {
    std::thread([descriptor, queue = queue_] { read(descriptor, *queue); }).detach();
}

void ScriptReader::read(int descriptor, Queue& queue) {
    std::string pending;
    char buffer[4096];
    while (true) {
        const ssize_t got = ::read(descriptor, buffer, sizeof buffer);
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return queue.add(pending, true);
        pending.append(buffer, static_cast<std::size_t>(got));
        for (std::size_t end = 0; (end = pending.find('\n')) != std::string::npos;) {
            queue.add(pending.substr(0, end), false);
            pending.erase(0, end + 1);
        }
    }
}

std::optional<std::string> ScriptReader::nextLine() {
    const std::lock_guard lock(queue_->mutex);
    if (queue_->lines.empty())
        return std::nullopt;
    std::string line = std::move(queue_->lines.front());
    queue_->lines.pop_front();
    return line;
}

bool ScriptReader::atEnd() {
    const std::lock_guard lock(queue_->mutex);
    return queue_->ended && queue_->lines.empty();
}

} // namespace dubrix
