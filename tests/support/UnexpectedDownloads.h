#pragma once

#include "platform/Downloader.h"

#include <gtest/gtest.h>

namespace dubrix {

/// For whoever must not reach for the network.
struct UnexpectedDownloads final : Downloader {
    std::optional<std::string> dataWithContentsOfURL(const std::string& address) override {
        ADD_FAILURE() << "asked for " << address;
        return std::nullopt;
    }
};

} // namespace dubrix
