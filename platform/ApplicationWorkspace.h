#pragma once

#include <string>

namespace dubrix {

/// The system's record of which applications are installed.
class ApplicationWorkspace {
public:
    virtual ~ApplicationWorkspace() = default;

    /// True exactly for identifiers of applications registered at this moment, duplicates
    /// included. Letter case counts; an unknown or malformed identifier gives false.
    virtual bool applicationIsInstalled(const std::string& identifier) const = 0;
};

} // namespace dubrix
