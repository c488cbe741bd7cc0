#include "platform/desktop/DesktopUrlOpener.h"

#include "device/judge/Addresses.h"
#include "formats/text/PlainText.h"

#include <QDesktopServices>
#include <QUrl>
#include <algorithm>
#include <array>

namespace dubrix {

bool DesktopUrlOpener::canOpenURL(const std::string& address) const {
    const std::size_t colon = address.find(':');
    if (colon == std::string::npos || colon == 0)
        return false;
    const std::string scheme = lowerCase(std::string_view(address).substr(0, colon));
    constexpr std::array<std::string_view, 3> desktops = {"http", "https", "mailto"};
    if (std::ranges::find(desktops, scheme) != desktops.end())
        return true;
    const auto opens = [&scheme](const std::optional<BundleInfo>& info) {
        return info &&
               std::ranges::find(info->urlSchemes, scheme, lowerCase) != info->urlSchemes.end();
    };
    return std::ranges::any_of(registry_.identifiers(), opens,
                               [this](const auto& name) { return registry_.infoOf(name); }) ||
           std::ranges::any_of(registry_.systemBundles(), opens, [this](const auto& path) {
               return BundleInfo::read(registry_.hostPath(path));
           });
}

void DesktopUrlOpener::openURL(const std::string& address) {
    const QUrl url(QString::fromStdString(address), QUrl::StrictMode);
    if (mayBeOpened(address) && !QDesktopServices::openUrl(url) && refused_)
        refused_(address);
}

} // namespace dubrix
