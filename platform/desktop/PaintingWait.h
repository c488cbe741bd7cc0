#pragma once

#include <functional>

namespace dubrix {

/// Calls `work` and returns when it has ended. On the application's main thread the work is done by
/// a thread of its own, while the caller waits in a nested event loop that leaves user input alone:
/// frames keep coming, taps are kept for later. On any other thread, and without an event loop, the
/// caller does it itself.
///
/// For what may take longer than a frame; starting the thread costs some tens of microseconds.
void waitWhilePainting(const std::function<void()>& work);

} // namespace dubrix
