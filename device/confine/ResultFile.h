#pragma once

#include "files/ReplacementFile.h"
#include "files/Result.h"

#include <string>

namespace dubrix {

/// A file of the desktop that a command on the device writes: the command gets an open descriptor
/// and nothing else of the folder, and the file gets its name when it is whole.
class ResultFile {
public:
    /// What happens where there is a file of that name: it is replaced, or the new one is called
    /// "name (2).ending" and so on.
    enum class Existing { Replaced, Kept };

    /// Begins a file that is to lie at `path`. Fails when nothing can be written in its folder, and
    /// when something other than a regular file is at the path and was to be replaced.
    static Result<ResultFile> begin(const std::string& path, Existing existing);

    int descriptor() const { return file_.descriptor(); }
    /// Gives the file its name; the path that it has then. Signals are kept waiting meanwhile.
    Result<std::string> finish();

private:
    ResultFile(std::filesystem::path path, Existing existing, ReplacementFile file);

    std::filesystem::path path_;
    Existing existing_;
    ReplacementFile file_;
};

} // namespace dubrix
