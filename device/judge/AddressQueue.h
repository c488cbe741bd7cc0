#pragma once

#include <chrono>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <sys/types.h>

namespace dubrix {

/// Which address is opened when: one at a time, at most one a second. Ten may wait, further ones
/// are dropped. The desktop's opener may stay for as long as the browser that it started: after a
/// while it holds the next one up no more, but only so many of them may stay.
class AddressQueue {
public:
    using Clock = std::chrono::steady_clock;

    static constexpr std::size_t mostWaiting = 10;
    static constexpr std::size_t mostOpeners = 4;
    static constexpr std::chrono::seconds between{1};
    static constexpr std::chrono::seconds patience{10};

    void add(std::string address);
    /// Takes the address that is to be opened now, if there is one.
    std::optional<std::string> next(Clock::time_point now);
    /// How long until there may be one; nothing when that takes another address or an opener's end.
    std::optional<Clock::duration> pause(Clock::time_point now) const;

    void started(pid_t opener, Clock::time_point now);
    void ended(pid_t opener);

private:
    std::deque<std::string> waiting_;
    std::map<pid_t, Clock::time_point> openers_;
    std::optional<Clock::time_point> last_;
};

} // namespace dubrix
