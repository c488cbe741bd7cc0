#pragma once

#include "platform/SystemLog.h"

namespace dubrix {

/// The system log of the desktop, and standard error for whoever started the program by hand.
class PosixSystemLog final : public SystemLog {
public:
    void log(const std::string& text) override;
};

/// A log that nobody reads.
struct Silence final : SystemLog {
    void log(const std::string&) override {}
};

} // namespace dubrix
