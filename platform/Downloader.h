#pragma once

#include <optional>
#include <string>

namespace dubrix {

/// Fetches from the network.
class Downloader {
public:
    virtual ~Downloader() = default;

    /// The whole body that `address` answers with, fetched while the caller waits; nothing on any
    /// failure (no connection, an error status, a body cut short or too large, time out).
    virtual std::optional<std::string> dataWithContentsOfURL(const std::string& address) = 0;
};

} // namespace dubrix
