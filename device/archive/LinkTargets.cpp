#include "device/archive/LinkTargets.h"

#include <algorithm>
#include <string_view>

namespace dubrix {

namespace {

/// As many links as the system itself follows on one path.
constexpr int mostLinksFollowed = 40;

std::string joined(const std::string& folder, std::string_view component) {
    return folder.empty() ? std::string(component) : folder + "/" + std::string(component);
}

void climb(std::string& folder) {
    const std::size_t slash = folder.rfind('/');
    folder.erase(slash == std::string::npos ? 0 : slash);
}

/// Walks `text` from the folder `place` as the system would, links on the way included, and leaves
/// `place` where it arrives. False when the way leads outside or follows more than `budget` links.
bool walk(const LinkTargets& links, std::string_view text, std::string& place, int& budget) {
    if (text.empty() || text.starts_with('/') || budget-- == 0)
        return false;
    while (!text.empty()) {
        const std::string_view component = text.substr(0, text.find('/'));
        text.remove_prefix(std::min(text.size(), component.size() + 1));
        if (component.empty() || component == ".")
            continue;
        if (component == "..") {
            if (place.empty())
                return false;
            climb(place);
            continue;
        }
        std::string next = joined(place, component);
        const auto link = links.find(next);
        if (link == links.end())
            place = std::move(next);
        else if (!walk(links, link->second, place, budget))
            return false;
    }
    return true;
}

} // namespace

Outcome checkLinkTargets(const LinkTargets& links) {
    for (const auto& [name, text] : links) {
        std::string place = name;
        climb(place);
        int budget = mostLinksFollowed;
        if (text.find('\0') != std::string::npos || !walk(links, text, place, budget))
            return Failure{"holds a link that leads outside the application: " + name};
    }
    return Success{};
}

} // namespace dubrix
