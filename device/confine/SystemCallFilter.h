#pragma once

#include "files/Result.h"

#include <string>

namespace dubrix {

/// For whom a system-call filter is.
enum class Confined {
    /// The installer, the shell and the home screen: nobody who needs a namespace.
    Command,
    /// What the engine runs beside the application's window: not to reach the display either, nor
    /// anybody else who listens on a local socket.
    EngineCommand,
    /// The application, whose web pages run in namespaces of their own: it may make new ones for
    /// users, processes and networks, and change the root within them.
    WebPages,
};

/// The filter as the kernel takes it, an array of `sock_filter`.
///
/// What it names is refused, everything else allowed: the terminal's input queue and console
/// (compared by the 32 bits that the kernel looks at), keyrings, tracing and other processes'
/// memory, performance counters, mounting, namespaces, other socket families than local, internet
/// and netlink, set-id bits on files, and the kernel's administration. Calls whose arguments lie in
/// memory, where a filter cannot look, and calls that are younger than this list are answered as if
/// the kernel did not know them (ENOSYS), so that libraries fall back to older ones. A program of
/// another processor architecture is killed at its first call.
Result<std::string> systemCallFilter(Confined whom);

} // namespace dubrix
