#pragma once

#include "device/Result.h"
#include "formats/Descriptor.h"

#include <string>

namespace dubrix {

/// A file of the desktop that a command on the device writes: the command gets an open descriptor
/// of a file without a name and nothing else of the folder, and the file gets its name when it is
/// whole. Where the file system knows no files without names, it has a hidden one until then.
class ResultFile {
public:
    /// What happens where there is a file of that name: it is replaced, or the new one is called
    /// "name (2).ending" and so on.
    enum class Existing { Replaced, Kept };

    /// Begins a file that is to lie at `path`. Fails when nothing can be written in its folder, and
    /// when something other than a regular file is at the path and was to be replaced.
    static Result<ResultFile> begin(const std::string& path, Existing existing);

    ResultFile(ResultFile&&) = default;
    ResultFile& operator=(ResultFile&&) = delete;
    ~ResultFile();

    int descriptor() const { return file_.get(); }
    /// Gives the file its name; the path that it has then. Signals are kept waiting meanwhile.
    Result<std::string> finish();

private:
    ResultFile(std::string folder, std::string name, Existing existing);
    bool open();
    Outcome replace();
    Result<std::string> placeBesideOthers();
    bool linkAs(const std::string& name) const;

    std::string folder_;
    std::string name_;
    Existing existing_;
    Descriptor place_;
    Descriptor file_;
    /// The name that the file has before its own; empty for none.
    std::string temporary_;
};

} // namespace dubrix
