#pragma once

namespace dubrix {

/// What a command must not do although the program that starts it may.
class CommandConfinement {
public:
    virtual ~CommandConfinement() = default;

    /// Confines the calling process, for good. Makes system calls only, so that it can be called
    /// between a fork and an exec. False when the process is not confined: then it must not go on.
    virtual bool enter() const = 0;
};

} // namespace dubrix
