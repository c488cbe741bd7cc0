#pragma once

#include <array>
#include <ctime>
#include <optional>
#include <sys/stat.h>

namespace dubrix {

/// What futimens and utimensat take to give a file the time of change that an archive tells. An
/// absent or absurd one, before 1970 or more than a day ahead, is left as it is.
inline std::array<timespec, 2> entryTimes(std::optional<std::time_t> modified) {
    constexpr std::time_t day = 24 * 60 * 60;
    const bool isSensible = modified && *modified >= 0 && *modified <= std::time(nullptr) + day;
    const timespec unchanged{0, UTIME_OMIT};
    return {unchanged, isSensible ? timespec{*modified, 0} : unchanged};
}

} // namespace dubrix
