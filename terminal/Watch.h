#pragma once

#include <functional>
#include <thread>

namespace dubrix {

/// Looks five times a second, by a thread of its own, as long as it lives; what is over sooner is
/// not looked at.
class Watch {
public:
    /// `look` outlives this.
    explicit Watch(const std::function<void()>& look);

private:
    std::jthread thread_;
};

} // namespace dubrix
