#include "device/archive/ArchivedBundle.h"

#include <algorithm>
#include <numeric>
#include <optional>
#include <set>
#include <unordered_map>

namespace dubrix {

namespace {

constexpr std::string_view payload = "Payload/";
constexpr std::size_t longestComponent = 255;
/// Leaves room for the folders above within the system's 4096.
constexpr std::size_t longestName = 3500;
constexpr std::size_t deepest = 100;

/// The name with single slashes between its components, without "." and without a slash at the
/// end; nothing when it cannot be the name of something in a folder.
std::optional<std::string> tidyName(std::string_view name) {
    if (name.starts_with('/') || name.size() > longestName ||
        name.find('\0') != std::string_view::npos)
        return std::nullopt;
    std::string tidy;
    std::size_t depth = 0;
    while (!name.empty()) {
        const std::string_view component = name.substr(0, name.find('/'));
        name.remove_prefix(std::min(name.size(), component.size() + 1));
        if (component.empty() || component == ".")
            continue;
        if (component == ".." || component.size() > longestComponent || ++depth > deepest)
            return std::nullopt;
        tidy.append(tidy.empty() ? "" : "/").append(component);
    }
    return tidy;
}

std::string_view parentOf(std::string_view name) {
    const std::size_t slash = name.rfind('/');
    return slash == std::string_view::npos ? std::string_view{} : name.substr(0, slash);
}

/// Tidies all names; drops the archive's own root and repeated folders, of which the last counts.
Outcome tidyNames(std::vector<ZipEntry>& entries) {
    for (ZipEntry& entry : entries) {
        if (entry.encrypted)
            return Failure{"is encrypted"};
        std::optional<std::string> name = tidyName(entry.name);
        if (!name || (name->empty() && entry.kind != ZipEntry::Kind::Folder))
            return Failure{"holds an entry with a forbidden name: " + entry.name};
        entry.name = std::move(*name);
    }
    std::unordered_map<std::string_view, ZipEntry*> seen;
    for (ZipEntry& entry : entries) {
        const auto [earlier, isNew] = seen.try_emplace(entry.name, &entry);
        if (isNew)
            continue;
        if (entry.kind != ZipEntry::Kind::Folder || earlier->second->kind != ZipEntry::Kind::Folder)
            return Failure{"holds " + entry.name + " twice"};
        earlier->second->permissions = entry.permissions;
        earlier->second->modified = entry.modified;
        entry.name.clear();
    }
    std::erase_if(entries, [](const ZipEntry& entry) { return entry.name.empty(); });
    return Success{};
}

Outcome checkParents(const std::vector<ZipEntry>& entries) {
    std::unordered_map<std::string_view, ZipEntry::Kind> kinds;
    for (const ZipEntry& entry : entries)
        kinds.emplace(entry.name, entry.kind);
    for (const ZipEntry& entry : entries)
        for (auto parent = parentOf(entry.name); !parent.empty(); parent = parentOf(parent)) {
            const auto found = kinds.find(parent);
            if (found != kinds.end() && found->second != ZipEntry::Kind::Folder)
                return Failure{"holds " + entry.name + " below what is not a folder"};
        }
    return Success{};
}

/// The name of the bundle folder that `entry` is or lies in; nothing for any other entry.
std::optional<std::string_view> bundleFolderOf(const ZipEntry& entry) {
    std::string_view name = entry.name;
    if (!name.starts_with(payload))
        return std::nullopt;
    name.remove_prefix(payload.size());
    const std::string_view folder = name.substr(0, name.find('/'));
    const bool isFolder = folder.size() < name.size() || entry.kind == ZipEntry::Kind::Folder;
    // "._" begins the files in which a desktop system keeps what an archive cannot.
    const bool isBundle = folder.ends_with(".app") && folder != ".app" && !folder.starts_with("._");
    return isFolder && isBundle ? std::optional(folder) : std::nullopt;
}

mode_t permissionsFor(const ZipEntry& entry) {
    const bool isFolder = entry.kind == ZipEntry::Kind::Folder;
    if (entry.permissions == 0)
        return isFolder ? 0755 : 0644;
    return (entry.permissions & 0775) | (isFolder ? 0500 : 0400);
}

/// Adds the folders that the archive does not list, and sorts parents before children. False when
/// they become too many: a short name can ask for a hundred.
bool completeFolders(ArchivedBundle& bundle) {
    std::set<std::string, std::less<>> known;
    for (const ZipEntry& folder : bundle.folders)
        known.insert(folder.name);
    const std::size_t most = mostZipEntries - bundle.files.size() - bundle.links.size();
    const auto addParents = [&](std::string_view name) {
        for (auto parent = parentOf(name); !parent.empty(); parent = parentOf(parent)) {
            if (known.size() > most || !known.emplace(parent).second)
                continue;
            ZipEntry folder;
            folder.name = parent;
            folder.kind = ZipEntry::Kind::Folder;
            folder.permissions = 0755;
            bundle.folders.push_back(std::move(folder));
        }
    };
    for (const auto* entries : {&bundle.files, &bundle.links})
        for (const ZipEntry& entry : *entries)
            addParents(entry.name);
    for (std::size_t index = bundle.folders.size(); index-- > 0;)
        addParents(std::string(bundle.folders[index].name));
    std::sort(bundle.folders.begin(), bundle.folders.end(),
              [](const ZipEntry& a, const ZipEntry& b) { return a.name < b.name; });
    return known.size() <= most;
}

} // namespace

const ZipEntry* ArchivedBundle::file(std::string_view name) const {
    const auto found = std::find_if(files.begin(), files.end(),
                                    [&](const ZipEntry& entry) { return entry.name == name; });
    return found == files.end() ? nullptr : &*found;
}

std::uint64_t ArchivedBundle::roomNeeded(std::uint64_t block) const {
    const auto add = [block](std::uint64_t sum, const ZipEntry& file) {
        return sum + file.size / block * block + block;
    };
    return std::accumulate(files.begin(), files.end(), (folders.size() + links.size() + 2) * block,
                           add);
}

Result<ArchivedBundle> findBundle(std::vector<ZipEntry> entries) {
    if (Outcome done = tidyNames(entries); !done)
        return done.failure();
    if (Outcome done = checkParents(entries); !done)
        return done.failure();
    std::set<std::string, std::less<>> names;
    for (const ZipEntry& entry : entries)
        if (const auto folder = bundleFolderOf(entry))
            names.emplace(*folder);
    if (names.empty())
        return Failure{"holds no application (Payload/*.app)", true};
    if (names.size() > 1)
        return Failure{"holds more than one application (Payload/*.app)"};

    ArchivedBundle bundle;
    bundle.folderName = *names.begin();
    std::erase_if(
        entries, [&](const ZipEntry& entry) { return bundleFolderOf(entry) != bundle.folderName; });
    for (ZipEntry& entry : entries) {
        if (entry.kind == ZipEntry::Kind::Special)
            return Failure{"holds what is neither a file, a folder nor a link: " + entry.name};
        entry.permissions = permissionsFor(entry);
        entry.name.erase(
            0, std::min(entry.name.size(), payload.size() + bundle.folderName.size() + 1));
        if (entry.name.empty()) {
            bundle.permissions = entry.permissions;
            bundle.modified = entry.modified;
        } else if (entry.kind == ZipEntry::Kind::Folder)
            bundle.folders.push_back(std::move(entry));
        else if (entry.kind == ZipEntry::Kind::Link)
            bundle.links.push_back(std::move(entry));
    }
    // The files stay where they are: they are most of the entries, and a copy would double these.
    std::erase_if(entries, [](const ZipEntry& entry) {
        return entry.name.empty() || entry.kind != ZipEntry::Kind::File;
    });
    bundle.files = std::move(entries);
    if (!completeFolders(bundle))
        return Failure{"has too many entries"};
    return bundle;
}

} // namespace dubrix
