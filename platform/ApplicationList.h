#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace dubrix {

/// The list of applications with what their bundles say of themselves. Answers are current: an
/// application installed a moment ago is known, one removed is not.
class ApplicationList {
public:
    virtual ~ApplicationList() = default;

    /// The value of `key` for the application with this display identifier (its bundle identifier):
    /// "displayName", "path" (absolute path of the installed ".app" folder, no trailing slash) or
    /// "bundleVersion". Nothing for an application the list does not know, a value its bundle does
    /// not give, or another key. Values are passed on unchanged.
    virtual std::optional<std::string>
    valueForKey(std::string_view key, const std::string& forDisplayIdentifier) const = 0;

    /// All applications, hidden and system ones included: display identifier to display name.
    virtual std::map<std::string, std::string> applications() const = 0;

    struct Entry {
        std::string displayIdentifier;
        std::string displayName;
        std::string path;
        bool isSystemApplication = false;
        bool isHidden = false;
    };

    /// The same applications with what a picker needs to choose and draw them, in no order.
    virtual std::vector<Entry> entries() const = 0;
};

} // namespace dubrix
