#pragma once

#include "terminal/Json.h"
#include "terminal/Request.h"
#include "terminal/Session.h"

namespace dubrix {

/// What the program ends with.
enum ExitStatus { AllDone = 0, SomethingFailed = 1, WrongUse = 2 };

/// Each carries out a request on the device and gives the exit status.
ExitStatus duplicate(Session& session, const Request& request);
ExitStatus update(Session& session, const Request& request);
ExitStatus showStatus(Session& session, const Request& request);
ExitStatus settings(Session& session, const Request& request);
ExitStatus list(Session& session, const Request& request);

/// Text in a field of a line that is separated from others by tabs.
std::string field(const std::string& text);

/// The array of objects for "duplicate" from its lines: "number", "identifier", "name", "version",
/// "archive", which is null where the line has none.
std::string duplicatesAsJson(const std::string& lines);

} // namespace dubrix
