#pragma once

#include "formats/Descriptor.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

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
/// alone everything else in the folder.
class ReplacementFile {
public:
    /// An empty file for `target`, with `permissions` as the process's mask leaves them; nothing,
    /// with errno, when it cannot be made.
    static std::optional<ReplacementFile> make(const std::filesystem::path& target,
                                               mode_t permissions);
    ~ReplacementFile() { giveUp(); }
    ReplacementFile(ReplacementFile&& other) noexcept;
    ReplacementFile& operator=(ReplacementFile&&) = delete;

    /// For reading and writing.
    int descriptor() const { return file_.get(); }

    /// Puts the file at its place; a symbolic link there is replaced, not followed. False, with
    /// errno, on any failure, those of earlier writes that the system tells late included.
    bool putInPlace(Durability durability);

private:
    ReplacementFile(std::filesystem::path target, Descriptor file);

    bool makeNamed(mode_t permissions);
    bool takeName();
    bool takeFreeName(const std::function<bool(const std::string&)>& take);
    void giveUp();

    std::filesystem::path target_;
    Descriptor file_;
    /// The name beside the target while it has one.
    std::string name_;
};

} // namespace dubrix
