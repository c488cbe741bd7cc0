#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace dubrix {

/// What a command must not do although the application that starts it may: the application's web
/// pages need namespaces, and its window a display.
///
/// A command is kept from other processes' memory and from signalling them, where the kernel has
/// Landlock, and to a system-call filter. Neither can be taken off again.
class CommandConfinement {
public:
    /// The filter in `file`, an array of `sock_filter`; nothing when it cannot be read or is none.
    static std::optional<CommandConfinement> read(const std::filesystem::path& file);

    /// Confines the calling process. Makes system calls only, so that it can be called between a
    /// fork and an exec. False when the process is not confined: then it must not go on.
    bool enter() const;

private:
    std::string filter_;
};

} // namespace dubrix
