#pragma once

#include "device/installer/Installer.h"

#include <cstdint>
#include <string>
#include <vector>

namespace dubrix {

/// What the installer says of its work: for people, on the standard output and, of failures, on the
/// standard error; or as fields for another program, a line of the standard output each:
///
///     installed IDENTIFIER NAME VERSION
///     replaced IDENTIFIER NAME VERSION EARLIER-VERSION
///     removed IDENTIFIER
///     kept IDENTIFIER            (removed, and can be put back)
///     back IDENTIFIER
///     saved FILE
///     failed REASON
///
/// A tab stands between fields and never in one, nor does anything else that acts on a line.
class Report {
public:
    enum class Form { People, Fields };

    Form form = Form::People;
    bool showsProgress = false;

    /// Work on the next file begins, which is number `index` of `count`.
    void begin(const std::string& file, std::size_t index = 0, std::size_t count = 1);
    void progress(std::uint64_t done, std::uint64_t total);

    void installed(const Installer::Installed& installed) const;
    void removed(const std::string& identifier, Installer::Removed removed) const;
    void putBack(const std::string& identifier) const;
    void saved(const std::string& identifier, const std::string& file) const;
    void failed(const Failure& failure) const;
    void waits() const;
    /// Closes what installed more than one file, when progress is shown.
    void sumUp(std::size_t count, const std::vector<std::string>& refused) const;

private:
    /// In the form that is asked for.
    void say(const std::string& words, const std::vector<std::string>& fields) const;
    void sayProgress(const std::string& words) const;

    unsigned percent_ = 0;
};

/// The last part of a path, as far as it can stand on a line.
std::string shownName(const std::filesystem::path& path);

} // namespace dubrix
