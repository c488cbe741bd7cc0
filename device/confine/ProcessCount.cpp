#include "device/confine/ProcessCount.h"

#include "files/FileTree.h"
#include "files/WholeFile.h"

#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <optional>
#include <sstream>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace dubrix {

namespace fs = std::filesystem;

namespace {

constexpr int manyTries = 20;
constexpr useconds_t pause = 5000;
const std::string hierarchies = "/sys/fs/cgroup";

/// Folders below which a group with the controller "pids" may be made: of the first kind of
/// control groups below our own group, of the second beside it, as a group that holds processes
/// hands no controllers on.
std::optional<fs::path> parentGroup() {
    std::ifstream own("/proc/self/cgroup");
    for (std::string line; std::getline(own, line);) {
        const std::size_t kinds = line.find(':') + 1;
        const std::size_t place = line.find(':', kinds);
        if (kinds == 0 || place == std::string::npos)
            continue;
        const std::string controllers = line.substr(kinds, place - kinds);
        const std::string path = line.substr(place + 1);
        if (controllers == "pids")
            return fs::path((hierarchies + "/pids").append(path));
        if (controllers.empty() && fs::exists(hierarchies + "/cgroup.controllers"))
            return path == "/" ? fs::path(hierarchies) : fs::path(hierarchies + path).parent_path();
    }
    return std::nullopt;
}

bool lock(const Descriptor& group) {
    return group.isOpen() && ::flock(group.get(), LOCK_EX | LOCK_NB) == 0;
}

Descriptor openGroup(const fs::path& group) {
    return Descriptor(::open(group.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
}

/// Removes the groups whose launcher was killed: those that nobody holds locked.
void sweep(const fs::path& parent) {
    std::error_code error;
    for (const auto& entry : fs::directory_iterator(parent, error)) {
        if (!entry.path().filename().native().starts_with("dubrix-"))
            continue;
        // Held until it is gone: one that has just been made is locked by its launcher next.
        const Descriptor group = openGroup(entry);
        if (lock(group))
            ::rmdir(entry.path().c_str());
    }
}

} // namespace

ProcessCount::~ProcessCount() {
    // What was killed last may still be on its way out.
    for (int tries = 0; !group_.empty() && tries < manyTries; ++tries) {
        if (::rmdir(group_.c_str()) == 0)
            group_.clear();
        else
            ::usleep(pause);
    }
}

bool ProcessCount::bound(unsigned most) {
    const std::optional<fs::path> parent = parentGroup();
    if (!parent)
        return false;
    sweep(*parent);
    const std::string group = (*parent / ("dubrix-" + randomUuid())).native();
    if (::mkdir(group.c_str(), 0755) != 0)
        return false;
    lock_ = openGroup(group);
    // Another launcher may sweep the group in this moment.
    if (!lock(lock_) || !writeInto(group + "/pids.max", std::to_string(most))) {
        ::rmdir(group.c_str());
        return false;
    }
    group_ = group;
    return true;
}

bool ProcessCount::join() const {
    return group_.empty() || writeInto(group_ + "/cgroup.procs", "0");
}

} // namespace dubrix
