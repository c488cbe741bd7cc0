#pragma once

#include <string>

namespace dubrix {

/// The site with the application's help pages.
class HelpPages {
public:
    virtual ~HelpPages() = default;

    /// The beginning of every help page's address: scheme and host without a slash at the end
    /// ("http://127.0.0.1:4242"). Empty when there is no such site now. Main thread only.
    virtual std::string siteAddress() = 0;
};

} // namespace dubrix
