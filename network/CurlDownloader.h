#pragma once

#include "platform/Downloader.h"

#include <chrono>
#include <cstddef>

namespace dubrix {

/// Downloads by HTTP and HTTPS. The server's certificate is checked; an address with HTTPS is never
/// redirected to one without. Any thread.
class CurlDownloader final : public Downloader {
public:
    struct Limits {
        std::size_t bodySize = std::size_t{64} << 20;
        long redirects = 5;
        std::chrono::milliseconds connecting{15'000};
        /// A transfer that brings next to nothing for this long has failed.
        std::chrono::seconds stalled{20};
        std::chrono::milliseconds total{300'000};
    };

    CurlDownloader() = default;
    explicit CurlDownloader(const Limits& limits) : limits_(limits) {}

    std::optional<std::string> dataWithContentsOfURL(const std::string& address) override;

private:
    Limits limits_;
};

} // namespace dubrix
