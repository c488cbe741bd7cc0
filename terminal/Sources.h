#pragma once

#include "terminal/Session.h"

namespace dubrix {

/// The installed application that somebody names.
struct Source {
    std::string identifier;
    /// Why there is none; empty when there is.
    std::string mistake = {};
    /// Whether the name fits several.
    bool isAmbiguous = false;
};

/// The application with this identifier or this exact name.
Source sourceNamed(const Session& session, const std::string& text);
/// Those that are named; without any, the one that is chosen in the settings.
std::vector<Source> sourcesNamed(const Session& session, const std::vector<std::string>& texts);

/// One duplicate of a source.
struct Duplicate {
    int number = 0;
    std::string identifier;
    std::string name;
    std::string version;
    bool isStale = false;
};
/// The installed duplicates of a source, by their numbers.
std::vector<Duplicate> duplicatesOf(const Session& session, const std::string& source);

/// All applications that have duplicates and are none themselves.
std::vector<Source> sourcesWithDuplicates(const Session& session);

/// What the list says of an application; empty for what it does not know.
std::string valueOf(const Session& session, std::string_view key, const std::string& identifier);

} // namespace dubrix
