#include "device/installer/Report.h"

#include "formats/text/PlainText.h"

#include <cstdio>
#include <utility>

namespace dubrix {

namespace {

/// At once, also into a pipe.
void print(std::FILE* stream, const std::string& line) {
    std::fprintf(stream, "%s\n", line.c_str());
    std::fflush(stream);
}

} // namespace

void Report::begin(const std::string& file, std::size_t index, std::size_t count) {
    percent_ = 0;
    const std::string of =
        count == 1 ? "" : std::to_string(index + 1) + " of " + std::to_string(count) + ": ";
    sayProgress("0 " + of + shownName(file));
}

void Report::progress(std::uint64_t done, std::uint64_t total) {
    if (total == 0)
        return;
    const auto percent =
        static_cast<unsigned>(100.0 * static_cast<double>(done) / static_cast<double>(total));
    if (percent != std::exchange(percent_, percent))
        sayProgress(std::to_string(percent));
}

void Report::sayProgress(const std::string& words) const {
    if (showsProgress)
        print(stdout, "progress " + words);
}

void Report::say(const std::string& words, const std::vector<std::string>& fields) const {
    if (form == Form::People)
        return print(stdout, onOneLine(words));
    std::string line;
    for (const std::string& field : fields)
        line.append(line.empty() ? "" : "\t").append(onOneLine(field));
    print(stdout, line);
}

void Report::installed(const Installer::Installed& installed) const {
    const BundleInfo& info = installed.info;
    std::vector<std::string> fields = {installed.earlier ? "replaced" : "installed",
                                       *info.identifier, info.displayName,
                                       info.version.value_or("")};
    if (installed.earlier)
        fields.push_back(*installed.earlier);
    std::string replaced;
    if (installed.earlier && !installed.earlier->empty() && !fields[3].empty())
        replaced = ", replaced " + *installed.earlier + " by " + fields[3];
    else if (installed.earlier)
        replaced = ", replaced the one before";
    say("Installed " + *info.identifier + " (" + info.displayName + ")" + replaced, fields);
}

void Report::removed(const std::string& identifier, Installer::Removed removed) const {
    say("Removed " + identifier + (removed.isKept ? ", can be put back" : ""),
        {removed.isKept ? "kept" : "removed", identifier});
}

void Report::putBack(const std::string& identifier) const {
    say("Put back " + identifier, {"back", identifier});
}

void Report::saved(const std::string& identifier, const std::string& file) const {
    say("Saved " + identifier + " (" + shownName(file) + ")", {"saved", shownName(file)});
}

void Report::failed(const Failure& failure) const {
    if (form == Form::Fields)
        say({}, {"failed", failure.text});
    else
        print(stderr, "ipainstaller: " + onOneLine(failure.text));
}

void Report::waits() const {
    print(stderr, "ipainstaller: waiting for another installer to finish");
}

void Report::sumUp(std::size_t count, const std::vector<std::string>& refused) const {
    if (!showsProgress || form == Form::Fields)
        return;
    std::string line = "Installed " + std::to_string(count - refused.size()) + " of " +
                       std::to_string(count) + " applications";
    for (const std::string& name : refused)
        line.append(&name == &refused.front() ? "; not installed: " : ", ").append(name);
    print(stdout, onOneLine(line));
}

std::string shownName(const std::filesystem::path& path) {
    return onOneLine(path.filename().native());
}

} // namespace dubrix
