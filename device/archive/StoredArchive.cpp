#include "device/archive/StoredArchive.h"

#include "device/archive/ZipFormat.h"
#include "files/Descriptor.h"
#include "files/FileTree.h"
#include "files/FileWork.h"
#include "formats/packing/Deflate.h"
#include "formats/text/Unicode.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <ctime>
#include <fcntl.h>
#include <optional>
#include <sys/stat.h>

namespace dubrix {

namespace {

constexpr std::size_t pieceSize = std::size_t{256} << 10;
/// So much of the directory is held at a time.
constexpr std::size_t directoryPieceSize = std::size_t{256} << 10;

struct PackedFile {
    /// Of a folder with a slash at its end.
    std::string name;
    mode_t mode = 0;
    std::time_t modified = 0;
    std::uint64_t size = 0;
    std::uint64_t offset = 0;
    std::uint32_t crc = 0;

    bool isLarge() const { return size >= narrow; }
};

Failure cannotRead(const std::string& name) {
    return systemFailure("cannot read " + name);
}

/// Lists what is to be packed, depth first.
class Listing {
public:
    explicit Listing(int folder) : folder_(folder) {}

    Outcome add(const std::string& name) {
        struct stat status{};
        if (::fstatat(folder_, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) != 0)
            return cannotRead(name);
        const bool isFolder = S_ISDIR(status.st_mode);
        if (!isFolder && !S_ISREG(status.st_mode) && !S_ISLNK(status.st_mode))
            return Failure{"cannot hold " + name + ", which is neither file, folder nor link"};
        entries_.push_back({.name = isFolder ? name + "/" : name,
                            .mode = status.st_mode,
                            .modified = status.st_mtim.tv_sec,
                            .size = isFolder ? 0 : static_cast<std::uint64_t>(status.st_size)});
        return isFolder ? addBelow(name) : Success{};
    }
    std::vector<PackedFile> take() { return std::move(entries_); }

private:
    Outcome addBelow(const std::string& name) {
        const auto names = unsortedNamesIn(openFolderAt(folder_, name));
        if (!names)
            return cannotRead(name);
        std::string path = name + "/";
        for (const std::string& below : *names) {
            path.resize(name.size() + 1);
            path += below;
            if (Outcome done = add(path); !done)
                return done;
        }
        return Success{};
    }

    int folder_;
    std::vector<PackedFile> entries_;
};

/// The two numbers that every entry has for its time: local, to two seconds, from 1980 on.
struct DosTime {
    std::uint64_t date = 1 << 5 | 1;
    std::uint64_t time = 0;
};

DosTime dosTime(std::time_t seconds) {
    std::tm parts{};
    seconds += seconds & 1; // up, as other programs do: never older than the file
    if (!::localtime_r(&seconds, &parts) || parts.tm_year < 80 || parts.tm_year > 207)
        return {};
    const auto number = [](int value) { return static_cast<std::uint64_t>(value); };
    return {number(parts.tm_year - 80) << 9 | number(parts.tm_mon + 1) << 5 | number(parts.tm_mday),
            number(parts.tm_hour) << 11 | number(parts.tm_min) << 5 | number(parts.tm_sec) / 2};
}

std::string timeField(const PackedFile& entry) {
    std::string field;
    if (entry.modified < INT32_MIN || entry.modified > INT32_MAX)
        return field;
    appendLittleEndian(field, extraTimes, 2);
    appendLittleEndian(field, 5, 2);
    appendLittleEndian(field, 1, 1); // only the last change
    appendLittleEndian(field, static_cast<std::uint64_t>(entry.modified), 4);
    return field;
}

/// What both headers of an entry have in common, from the version needed to the size of `extra`.
void appendCommon(std::string& bytes, const PackedFile& entry, bool is64,
                  const std::string& extra) {
    const bool isMarked =
        isUtf8(entry.name) && std::ranges::any_of(entry.name, [](char byte) { return byte < 0; });
    const DosTime time = dosTime(entry.modified);
    const std::uint64_t size = entry.isLarge() ? narrow : entry.size;
    appendLittleEndian(bytes, is64 ? 45 : 10, 2);
    appendLittleEndian(bytes, isMarked ? utf8Flag : 0, 2);
    appendLittleEndian(bytes, 0, 2); // stored
    appendLittleEndian(bytes, time.time, 2);
    appendLittleEndian(bytes, time.date, 2);
    appendLittleEndian(bytes, entry.crc, 4);
    appendLittleEndian(bytes, size, 4);
    appendLittleEndian(bytes, size, 4);
    appendLittleEndian(bytes, entry.name.size(), 2);
    appendLittleEndian(bytes, extra.size(), 2);
}

std::string localHeader(const PackedFile& entry) {
    std::string extra;
    if (entry.isLarge()) {
        appendLittleEndian(extra, extra64, 2);
        appendLittleEndian(extra, 16, 2);
        appendLittleEndian(extra, entry.size, 8);
        appendLittleEndian(extra, entry.size, 8);
    }
    extra += timeField(entry);
    std::string header;
    appendLittleEndian(header, localSignature, 4);
    appendCommon(header, entry, entry.isLarge(), extra);
    return header + entry.name + extra;
}

void appendDirectoryEntry(std::string& bytes, const PackedFile& entry) {
    std::string wide;
    for (const std::uint64_t value : {entry.size, entry.size, entry.offset})
        if (value >= narrow)
            appendLittleEndian(wide, value, 8);
    std::string extra;
    if (!wide.empty()) {
        appendLittleEndian(extra, extra64, 2);
        appendLittleEndian(extra, wide.size(), 2);
        extra += wide;
    }
    extra += timeField(entry);
    const std::uint64_t folderAttribute = S_ISDIR(entry.mode) ? 0x10 : 0;
    appendLittleEndian(bytes, entrySignature, 4);
    appendLittleEndian(bytes, unixHost << 8 | 30, 2);
    appendCommon(bytes, entry, !wide.empty(), extra);
    appendLittleEndian(bytes, 0, 2); // comment
    appendLittleEndian(bytes, 0, 2); // volume
    appendLittleEndian(bytes, 0, 2); // nothing known of the content
    appendLittleEndian(bytes, static_cast<std::uint64_t>(entry.mode) << 16 | folderAttribute, 4);
    appendLittleEndian(bytes, std::min(entry.offset, narrow), 4);
    bytes += entry.name;
    bytes += extra;
}

std::string endRecords(std::uint64_t count, std::uint64_t start, std::uint64_t end) {
    std::string bytes;
    if (count >= 0xffff || end >= narrow) {
        appendLittleEndian(bytes, end64Signature, 4);
        appendLittleEndian(bytes, end64Size - 12, 8);
        appendLittleEndian(bytes, unixHost << 8 | 45, 2);
        appendLittleEndian(bytes, 45, 2);
        appendLittleEndian(bytes, 0, 8); // volumes
        for (const std::uint64_t value : {count, count, end - start, start})
            appendLittleEndian(bytes, value, 8);
        appendLittleEndian(bytes, locator64Signature, 4);
        appendLittleEndian(bytes, 0, 4);
        appendLittleEndian(bytes, end, 8);
        appendLittleEndian(bytes, 1, 4);
    }
    appendLittleEndian(bytes, endSignature, 4);
    appendLittleEndian(bytes, 0, 4); // volumes
    for (int times = 0; times < 2; ++times)
        appendLittleEndian(bytes, std::min<std::uint64_t>(count, 0xffff), 2);
    appendLittleEndian(bytes, std::min(end - start, narrow), 4);
    appendLittleEndian(bytes, std::min(start, narrow), 4);
    appendLittleEndian(bytes, 0, 2); // comment
    return bytes;
}

/// Packs entries, one after the other, each where it belongs.
class Packing {
public:
    Packing(int folder, int archive) : folder_(folder), archive_(archive) {}

    Outcome pack(PackedFile& entry) {
        const std::size_t headerSize = localHeader(entry).size();
        if (Outcome done = S_ISREG(entry.mode)   ? packFile(entry, headerSize)
                           : S_ISLNK(entry.mode) ? packLink(entry, headerSize)
                                                 : Success{};
            !done)
            return done;
        return write(localHeader(entry), entry.offset);
    }

private:
    Outcome packFile(PackedFile& entry, std::uint64_t headerSize) {
        const Descriptor file(
            ::openat(folder_, entry.name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
        struct stat status{};
        if (!file.isOpen() || ::fstat(file.get(), &status) != 0)
            return cannotRead(entry.name);
        if (!S_ISREG(status.st_mode))
            return changed(entry);
        piece_.resize(pieceSize);
        std::uint64_t packed = 0;
        while (true) {
            const ssize_t got = ::read(file.get(), piece_.data(), piece_.size());
            if (got < 0 && errno == EINTR)
                continue;
            if (got < 0)
                return cannotRead(entry.name);
            if (got == 0)
                return packed == entry.size ? Outcome(Success{}) : changed(entry);
            const std::string_view bytes(piece_.data(), static_cast<std::size_t>(got));
            if (bytes.size() > entry.size - packed)
                return changed(entry);
            entry.crc = checksum(bytes, entry.crc);
            if (Outcome done = write(bytes, entry.offset + headerSize + packed); !done)
                return done;
            packed += bytes.size();
        }
    }

    Outcome packLink(PackedFile& entry, std::uint64_t headerSize) {
        piece_.resize(PATH_MAX);
        const ssize_t got = ::readlinkat(folder_, entry.name.c_str(), piece_.data(), piece_.size());
        if (got < 0)
            return cannotRead(entry.name);
        const std::string_view text(piece_.data(), static_cast<std::size_t>(got));
        if (text.size() != entry.size)
            return changed(entry);
        entry.crc = checksum(text);
        return write(text, entry.offset + headerSize);
    }

    static Failure changed(const PackedFile& entry) {
        return Failure{"cannot hold " + entry.name + ", which changes meanwhile"};
    }

    Outcome write(std::string_view bytes, std::uint64_t offset) const {
        if (!writeAllAt(archive_, bytes, offset))
            return systemFailure("cannot be written");
        return Success{};
    }

    int folder_;
    int archive_;
    std::string piece_;
};

/// Gives each entry its place; where the last one ends.
std::uint64_t place(std::vector<PackedFile>& entries) {
    std::uint64_t end = 0;
    for (PackedFile& entry : entries) {
        entry.offset = end;
        end += localHeader(entry).size() + entry.size;
    }
    return end;
}

Outcome writeDirectory(const std::vector<PackedFile>& entries, int archive, std::uint64_t start) {
    std::string bytes;
    std::uint64_t end = start;
    const auto flush = [&] {
        const bool done = writeAllAt(archive, bytes, end);
        end += bytes.size();
        bytes.clear();
        return done;
    };
    for (const PackedFile& entry : entries) {
        appendDirectoryEntry(bytes, entry);
        if (bytes.size() >= directoryPieceSize && !flush())
            return systemFailure("cannot be written");
    }
    if (!flush() || !writeAllAt(archive, endRecords(entries.size(), start, end), end))
        return systemFailure("cannot be written");
    return Success{};
}

} // namespace

Outcome packStored(int folder, const std::vector<std::string>& names, int archive,
                   const std::function<void(const std::string& name)>& added) {
    Listing listing(folder);
    for (const std::string& name : names)
        if (Outcome done = listing.add(name); !done)
            return done;
    std::vector<PackedFile> entries = listing.take();
    const std::uint64_t end = place(entries);
    std::vector<std::uint64_t> sizes;
    sizes.reserve(entries.size());
    for (const PackedFile& entry : entries)
        sizes.push_back(entry.size);
    Outcome done = workOnFiles(sizes, [&]() -> FileWork {
        return [&, packing = std::make_shared<Packing>(folder, archive)](std::size_t index) {
            return packing->pack(entries[index]);
        };
    });
    if (done)
        done = writeDirectory(entries, archive, end);
    if (done && added)
        for (const PackedFile& entry : entries)
            added(entry.name);
    return done;
}

} // namespace dubrix
