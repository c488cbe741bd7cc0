#pragma once

#include <functional>
#include <string_view>

namespace dubrix {

/// Told the name of each step of an installer's work when it is done, by one thread at a time.
using StepHook = std::function<void(std::string_view step)>;

} // namespace dubrix
