#pragma once

#include <string>

namespace dubrix {

/// Hands addresses to the system. Main thread only.
class UrlOpener {
public:
    virtual ~UrlOpener() = default;

    /// Whether the system or an application installed at this moment opens addresses of the scheme
    /// that `address` begins with ("mailto:…"). Letter case does not count in a scheme.
    virtual bool canOpenURL(const std::string& address) const = 0;

    /// Hands the address on: to an application, the browser or the mail program. Returns at once;
    /// that nothing opens it is not reported.
    virtual void openURL(const std::string& address) = 0;
};

} // namespace dubrix
