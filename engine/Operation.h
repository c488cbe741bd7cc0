#pragma once

#include "engine/CloneEngine.h"

namespace dubrix {

/// One of the engine's operations at work. The ports let the event loop turn while they wait, and a
/// press, a timer or an answer that comes out of it must not start an operation inside this one.
class CloneEngine::Operation {
public:
    explicit Operation(CloneEngine& engine);
    ~Operation();
    Operation(const Operation&) = delete;
    Operation& operator=(const Operation&) = delete;

    /// False while another operation is at work: then there is nothing to do.
    bool hasBegun() const { return begun_; }

    /// Claims the device for the rest of the operation. False, and the user is told, when another
    /// window or program is making a duplicate on it.
    bool claimsDevice();

private:
    CloneEngine& engine_;
    bool begun_;
    bool claimed_ = false;
};

} // namespace dubrix
