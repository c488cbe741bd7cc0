#pragma once

#include <deque>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

namespace dubrix {

/// Reads lines from a file descriptor on a thread of its own, so that nobody waits for a pipe.
class ScriptReader {
public:
    /// Starts reading. The thread ends with the input, or with the process: an input that stays
    /// open cannot be interrupted.
    explicit ScriptReader(int descriptor);

    /// The next line that has come; nothing when there is none yet.
    std::optional<std::string> nextLine();
    /// Whether the input has ended and every line has been taken.
    bool atEnd();

private:
    struct Queue {
        std::mutex mutex;
        std::deque<std::string> lines;
        bool ended = false;

        void add(std::string line, bool last);
    };

    static void read(int descriptor, Queue& queue);

    std::shared_ptr<Queue> queue_ = std::make_shared<Queue>();
};

} // namespace dubrix
