#pragma once

#include "device/Registry.h"
#include "platform/UrlOpener.h"

namespace dubrix {

/// The device's applications say which schemes they open; the desktop opens web pages and mail, as
/// far as the launcher would let them through, and nothing else.
class DesktopUrlOpener final : public UrlOpener {
public:
    explicit DesktopUrlOpener(const std::filesystem::path& root) : registry_(root) {}

    bool canOpenURL(const std::string& address) const override;
    void openURL(const std::string& address) override;

private:
    Registry registry_;
};

} // namespace dubrix
