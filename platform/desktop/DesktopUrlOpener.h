#pragma once

#include "device/registry/Registry.h"
#include "platform/UrlOpener.h"

#include <functional>

namespace dubrix {

/// The device's applications say which schemes they open; the desktop opens web pages and mail, as
/// far as the launcher would let them through, and nothing else.
class DesktopUrlOpener final : public UrlOpener {
public:
    using Refused = std::function<void(const std::string& address)>;

    /// `refused` is told of what nothing opens, as far as that is known at once.
    explicit DesktopUrlOpener(const std::filesystem::path& root, Refused refused = {})
        : registry_(root),
          refused_(std::move(refused)) {}

    bool canOpenURL(const std::string& address) const override;
    void openURL(const std::string& address) override;

private:
    Registry registry_;
    Refused refused_;
};

} // namespace dubrix
