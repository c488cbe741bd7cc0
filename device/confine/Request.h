#pragma once

#include "device/confine/GivenFile.h"
#include "device/confine/ResultFile.h"
#include "device/confine/Streams.h"
#include "device/confine/SystemCallFilter.h"

#include <span>
#include <string>
#include <vector>

namespace dubrix {

/// A file or folder of the desktop that the command is to see at `place`, read-only.
struct Shared {
    std::string path;
    std::string place;
    Given kind;
    /// Whether a window asks for it.
    bool asked;
};

/// What the command line asks for.
struct Request {
    /// Without a namespace.
    bool bare = false;
    /// The standard streams and the terminal are left to the command.
    bool terminal = false;
    bool input = false;
    /// The command ends by itself, when it is asked to.
    bool stoppable = false;
    Confined whom = Confined::Command;
    Shown shown = Shown::Visible;
    std::vector<int> kept;
    std::string device;
    std::vector<Shared> shared;
    std::string result;
    ResultFile::Existing existing = ResultFile::Existing::Replaced;
    std::vector<std::string> namespaceOptions;
    std::vector<std::string> command;
};

/// Reads the command line without the program's name; ends the process with status 2 and a text
/// when it makes no sense.
Request parseRequest(std::span<char* const> words);

} // namespace dubrix
