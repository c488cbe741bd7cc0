#pragma once

#include <string>
#include <sys/types.h>
#include <vector>

namespace dubrix {

/// What the launcher has done beside it. Each ends with the launcher whose process is named,
/// however that ends, and gives the exit status.

/// Opens the addresses that come through the named pipe `path`, a line each, by the desktop's
/// xdg-open. What that does not open is told the window, through the desk's named pipe `answers`:
/// the fields "unopened" and the address. When the launcher has been killed, the pipe and its
/// folder are removed.
int openAddresses(pid_t launcher, const std::string& path, const std::string& answers);

/// Reads a window's requests from the standard input, judges them and writes them to the standard
/// output as they came, a refused one with the verb "refused" and no argument. When the launcher
/// has been killed, the desk's pipes in `folder` are removed and all that is being served is ended.
int judgeRequests(pid_t launcher, const std::string& folder, std::vector<std::string> verbs);

/// Hands the script on the standard input to the standard output and writes the pictures that it
/// asks for, beside `also` if that is not empty: they come through descriptor 3 and are answered
/// through 4. There the word "ready" comes first, when a script that is a file has been read.
int takePictures(pid_t launcher, const std::string& also);

} // namespace dubrix
