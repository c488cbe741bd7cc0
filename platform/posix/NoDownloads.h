#pragma once

#include "platform/Downloader.h"

namespace dubrix {

/// For a program that does not reach for the network: nothing ever comes.
class NoDownloads final : public Downloader {
public:
    std::optional<std::string> dataWithContentsOfURL(const std::string&) override {
        return std::nullopt;
    }
};

} // namespace dubrix
