#include "device/judge/AddressQueue.h"

#include <algorithm>

namespace dubrix {

void AddressQueue::add(std::string address) {
    if (waiting_.size() < mostWaiting)
        waiting_.push_back(std::move(address));
}

std::optional<std::string> AddressQueue::next(Clock::time_point now) {
    if (pause(now) != Clock::duration::zero())
        return std::nullopt;
    std::string address = std::move(waiting_.front());
    waiting_.pop_front();
    return address;
}

std::optional<AddressQueue::Clock::duration> AddressQueue::pause(Clock::time_point now) const {
    if (waiting_.empty() || openers_.size() >= mostOpeners)
        return std::nullopt;
    if (!last_)
        return Clock::duration::zero();
    Clock::time_point then = *last_ + between;
    for (const auto& [opener, start] : openers_)
        then = std::max(then, start + patience);
    return std::max(then - now, Clock::duration::zero());
}

void AddressQueue::started(pid_t opener, Clock::time_point now) {
    openers_.emplace(opener, now);
    last_ = now;
}

void AddressQueue::ended(pid_t opener) {
    openers_.erase(opener);
}

} // namespace dubrix
