#pragma once

#include "platform/posix/CommandConfinement.h"

#include <filesystem>
#include <memory>
#include <string>

namespace dubrix {

/// Keeps a command from other processes' memory and from signalling them, where the kernel has
/// Landlock, and to a system-call filter: the application's web pages need namespaces, and its
/// window a display, that its commands must not have.
class SystemCallConfinement final : public CommandConfinement {
public:
    /// The filter in `file`, an array of `sock_filter`; null when it cannot be read or is none.
    static std::unique_ptr<SystemCallConfinement> read(const std::filesystem::path& file);

    bool enter() const override;

private:
    explicit SystemCallConfinement(std::string filter) : filter_(std::move(filter)) {}

    std::string filter_;
};

} // namespace dubrix
