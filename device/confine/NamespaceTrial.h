#pragma once

#include <string>

namespace dubrix {

/// Why a namespace could not be made.
struct NamespaceRefusal {
    /// Whether the system forbids namespaces to this person for good: by permission or because the
    /// kernel has none. What passes, such as used-up namespaces, processes or memory, is no such
    /// reason, because a command on a device can bring it about.
    bool forGood;
    /// In the system's words; empty when namespaces can be made after all.
    std::string reason;
};

/// Tries, in a process of its own, what every namespace of the device needs: the namespaces
/// themselves and a file system of processes.
NamespaceRefusal tryNamespaces();

} // namespace dubrix
