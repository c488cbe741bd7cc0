#pragma once

#include <string>

namespace dubrix {

/// The system log. Any thread.
class SystemLog {
public:
    virtual ~SystemLog() = default;

    /// Writes one free-form text; line breaks in it are kept. Never fails visibly.
    virtual void log(const std::string& text) = 0;
};

} // namespace dubrix
