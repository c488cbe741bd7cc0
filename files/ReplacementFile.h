#pragma once

#include "files/Descriptor.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <sys/types.h>

namespace dubrix {

/// What a change of files must outlive.
enum class Durability {
    /// The end of the process: whoever looks finds the old or the new, until power is cut.
    Process,
    /// A cut of power too: what is new is on the disk before it takes the old one's place.
    PowerCut,
};

/// A new file that takes its place, an earlier file's too, at one stroke when it is whole, and is
/// gone when it does not come to that. It has no name until then where the file system permits;
/// elsewhere a name beside its place tells whose it is, and a lock that lasts as long as its writer
/// tells the writer's death. Such names are swept by the next writer for the same place, who leaves
/// alone everything else in the folder. The folder is held: what happens to its own name meanwhile
/// does not matter.
class ReplacementFile {
public:
    /// An empty file for `target`, open for writing, with `permissions` as the process's mask
    /// leaves them; nothing, with errno, when it cannot be made.
    static std::optional<ReplacementFile> make(const std::filesystem::path& target,
                                               mode_t permissions);
    ~ReplacementFile() { giveUp(); }
    ReplacementFile(ReplacementFile&& other) noexcept;
    ReplacementFile& operator=(ReplacementFile&&) = delete;

    int descriptor() const { return file_.get(); }

    /// Puts the file at its place; a symbolic link there is replaced, not followed. False, with
    /// errno, on any failure, those of earlier writes that the system tells late included.
    bool putInPlace(Durability durability);
    /// Puts it at another name in the folder, where nothing is yet: false with EEXIST where
    /// something is, and on any other failure.
    bool putBeside(const std::string& name);

private:
    ReplacementFile(Descriptor folder, std::string target);

    bool open(mode_t permissions);
    bool openNamed(mode_t permissions);
    bool linkAs(const std::string& name) const;
    bool isStillAt(const std::string& name) const;
    bool sweep(const std::string& name) const;
    bool takeFreeName(const std::function<bool(const std::string&)>& take);
    void giveUp();

    Descriptor folder_;
    /// In the folder, as the names that follow are.
    std::string target_;
    Descriptor file_;
    /// The name that it has before its own; empty for none.
    std::string name_;
};

} // namespace dubrix
