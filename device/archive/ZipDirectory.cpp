#include "device/archive/ZipDirectory.h"

#include "device/archive/ZipFormat.h"
#include "files/Descriptor.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string_view>
#include <sys/stat.h>

namespace dubrix {

namespace {

constexpr std::size_t longestComment = 0xffff;
constexpr std::uint32_t volumeSignature = 0x08074b50;
/// Deflate never makes more than 1032 bytes of one.
constexpr std::uint64_t largestRatio = 1032;
constexpr std::uint64_t largestDirectory = std::uint64_t{16} << 20;

/// What the record at the archive's end says of the directory.
struct EndRecord {
    /// Where the record itself lies; the directory ends there.
    std::uint64_t offset = 0;
    std::uint64_t count = 0;
    std::uint64_t size = 0;
    std::uint64_t claimedStart = 0;
};

/// Where the directory lies. `shift` is what stands before the archive proper, such as a stub that
/// unpacks it: the offsets in the archive do not count it.
struct Extent {
    std::uint64_t start = 0;
    std::uint64_t size = 0;
    std::uint64_t count = 0;
    std::uint64_t shift = 0;
};

Failure damaged() {
    return Failure{"is damaged"};
}
Failure notAnArchive() {
    return Failure{"is not an archive", true};
}
/// For a file without an end record: an archive begins with an entry, after a mark when it was
/// meant to be spread over volumes.
Failure endless(int archive) {
    std::array<char, 4> start{};
    const bool isRead = readExactly(archive, 0, start.data(), start.size());
    const std::uint64_t signature = isRead ? littleEndian(start.data(), 4) : 0;
    return signature == localSignature || signature == volumeSignature ? Failure{"is cut short"}
                                                                       : notAnArchive();
}
Failure severalVolumes() {
    return Failure{"is spread over several volumes"};
}

/// Goes over to the 64-bit twin of the end record when a locator stands before that. The twin is
/// expected right before its locator, because the locator's own offset lacks the shift.
Outcome widen(int archive, EndRecord& end) {
    std::array<char, locator64Size> locator{};
    if (end.offset < locator64Size ||
        !readExactly(archive, end.offset - locator64Size, locator.data(), locator.size()) ||
        littleEndian(locator.data(), 4) != locator64Signature)
        return Success{};
    std::array<char, end64Size> record{};
    if (end.offset < locator64Size + end64Size)
        return damaged();
    end.offset -= locator64Size + end64Size;
    if (!readExactly(archive, end.offset, record.data(), record.size()) ||
        littleEndian(record.data(), 4) != end64Signature)
        return damaged();
    if (littleEndian(record.data() + 16, 4) != 0 || littleEndian(record.data() + 20, 4) != 0)
        return severalVolumes();
    end.count = littleEndian(record.data() + 32, 8);
    end.size = littleEndian(record.data() + 40, 8);
    end.claimedStart = littleEndian(record.data() + 48, 8);
    return Success{};
}

/// Looks for the end record from the end backwards, past a comment.
Result<EndRecord> findEnd(int archive, std::uint64_t fileSize) {
    std::string tail(std::min<std::uint64_t>(fileSize, endSize + longestComment), '\0');
    if (tail.size() < endSize ||
        !readExactly(archive, fileSize - tail.size(), tail.data(), tail.size()))
        return endless(archive);
    std::size_t at = tail.size() - endSize;
    const auto isEnd = [&] {
        return littleEndian(tail.data() + at, 4) == endSignature &&
               at + endSize + littleEndian(tail.data() + at + 20, 2) <= tail.size();
    };
    while (!isEnd())
        if (at-- == 0)
            return endless(archive);

    const char* fields = tail.data() + at;
    for (const char* volume : {fields + 4, fields + 6})
        if (littleEndian(volume, 2) != 0 && littleEndian(volume, 2) != 0xffff)
            return severalVolumes();
    return EndRecord{fileSize - tail.size() + at, littleEndian(fields + 10, 2),
                     littleEndian(fields + 12, 4), littleEndian(fields + 16, 4)};
}

Result<Extent> findDirectory(int archive, std::uint64_t fileSize) {
    Result<EndRecord> end = findEnd(archive, fileSize);
    if (!end)
        return end.failure();
    if (Outcome done = widen(archive, *end); !done)
        return done.failure();
    if (end->size > end->offset || end->claimedStart > end->offset - end->size)
        return damaged();
    const std::uint64_t start = end->offset - end->size;
    return Extent{start, end->size, end->count, start - end->claimedStart};
}

/// The content of the extra field of this kind; nothing when there is none. What cannot be a field
/// ends the search: padding that pretends to be one is common and harmless.
std::optional<std::string_view> extraField(std::string_view extra, std::uint16_t kind) {
    while (extra.size() >= 4) {
        const auto found = littleEndian(extra.data(), 2);
        const std::size_t size = littleEndian(extra.data() + 2, 2);
        extra.remove_prefix(4);
        if (found == kind)
            return extra.substr(0, size);
        extra.remove_prefix(std::min(size, extra.size()));
    }
    return std::nullopt;
}

/// Takes the 64-bit values that stand in the extra fields for those that did not fit.
bool widen(ZipEntry& entry, std::string_view extra) {
    auto field = extraField(extra, extra64);
    if (!field)
        return true;
    for (std::uint64_t* value : {&entry.size, &entry.packedSize, &entry.headerOffset}) {
        if (*value != narrow)
            continue;
        if (field->size() < 8)
            return false;
        *value = littleEndian(field->data(), 8);
        field->remove_prefix(8);
    }
    return true;
}

/// The time in the two numbers that every entry has; nothing for what is in no calendar.
std::optional<std::time_t> localTime(std::uint64_t date, std::uint64_t time) {
    std::tm parts{};
    parts.tm_year = static_cast<int>(date >> 9) + 80;
    parts.tm_mon = static_cast<int>(date >> 5 & 15) - 1;
    parts.tm_mday = static_cast<int>(date & 31);
    parts.tm_hour = static_cast<int>(time >> 11);
    parts.tm_min = static_cast<int>(time >> 5 & 63);
    parts.tm_sec = static_cast<int>(time & 31) * 2;
    parts.tm_isdst = -1;
    if (parts.tm_mon < 0 || parts.tm_mon > 11 || parts.tm_mday < 1 || parts.tm_hour > 23 ||
        parts.tm_min > 59 || parts.tm_sec > 59)
        return std::nullopt;
    const std::time_t seconds = std::mktime(&parts);
    return seconds == -1 ? std::nullopt : std::optional(seconds);
}

/// The time of the last change that Unix systems add, in seconds of 32 bits.
std::optional<std::time_t> stampedTime(std::string_view extra) {
    const auto field = extraField(extra, extraTimes);
    if (!field || field->size() < 5 || ((*field)[0] & 1) == 0)
        return std::nullopt;
    return static_cast<std::int32_t>(littleEndian(field->data() + 1, 4));
}

void setKind(ZipEntry& entry, unsigned host, std::uint32_t attributes) {
    constexpr unsigned darwinHost = 19;
    constexpr std::uint32_t folderAttribute = 0x10;
    const mode_t mode = host == unixHost || host == darwinHost ? attributes >> 16 : 0;
    entry.permissions = mode & 07777;
    const bool named = entry.name.ends_with('/');
    switch (mode & S_IFMT) {
    case 0:
        entry.kind = named || (attributes & folderAttribute) != 0 ? ZipEntry::Kind::Folder
                                                                  : ZipEntry::Kind::File;
        break;
    case S_IFREG:
        entry.kind = named ? ZipEntry::Kind::Folder : ZipEntry::Kind::File;
        break;
    case S_IFDIR:
        entry.kind = ZipEntry::Kind::Folder;
        break;
    case S_IFLNK:
        entry.kind = named ? ZipEntry::Kind::Special : ZipEntry::Kind::Link;
        break;
    default:
        entry.kind = ZipEntry::Kind::Special;
    }
}

bool isPlausible(const ZipEntry& entry, const Extent& extent) {
    if (entry.headerOffset > extent.start || entry.packedSize > extent.start - entry.headerOffset)
        return false;
    if (entry.encrypted)
        return true; // its sizes include the cipher's own bytes
    if (entry.kind == ZipEntry::Kind::Folder && entry.size != 0)
        return false;
    return entry.method == 0 ? entry.size == entry.packedSize
                             : entry.size / largestRatio <= entry.packedSize;
}

/// Reads the entry at the front of `directory` and takes it off; nothing when it is damaged.
std::optional<ZipEntry> takeEntry(std::string_view& directory, const Extent& extent) {
    if (directory.size() < entrySize || littleEndian(directory.data(), 4) != entrySignature)
        return std::nullopt;
    const char* fields = directory.data();
    const std::size_t nameSize = littleEndian(fields + 28, 2);
    const std::size_t extraSize = littleEndian(fields + 30, 2);
    const std::size_t whole = entrySize + nameSize + extraSize + littleEndian(fields + 32, 2);
    if (whole > directory.size())
        return std::nullopt;
    constexpr std::uint64_t encryptionFlags = 1 | 1 << 6 | 1 << 13;
    ZipEntry entry;
    entry.encrypted = (littleEndian(fields + 8, 2) & encryptionFlags) != 0;
    entry.method = static_cast<std::uint16_t>(littleEndian(fields + 10, 2));
    entry.crc = static_cast<std::uint32_t>(littleEndian(fields + 16, 4));
    entry.packedSize = littleEndian(fields + 20, 4);
    entry.size = littleEndian(fields + 24, 4);
    entry.headerOffset = littleEndian(fields + 42, 4);
    entry.name = directory.substr(entrySize, nameSize);
    setKind(entry, static_cast<unsigned char>(fields[5]),
            static_cast<std::uint32_t>(littleEndian(fields + 38, 4)));
    const std::string_view extra = directory.substr(entrySize + nameSize, extraSize);
    entry.modified = stampedTime(extra);
    if (!entry.modified)
        entry.modified = localTime(littleEndian(fields + 14, 2), littleEndian(fields + 12, 2));
    if (!widen(entry, extra) ||
        entry.headerOffset > std::numeric_limits<std::uint64_t>::max() - extent.shift)
        return std::nullopt;
    entry.headerOffset += extent.shift;
    directory.remove_prefix(whole);
    return isPlausible(entry, extent) ? std::optional(std::move(entry)) : std::nullopt;
}

} // namespace

Result<std::vector<ZipEntry>> readZipDirectory(int archive) {
    struct stat status{};
    if (::fstat(archive, &status) != 0 || !S_ISREG(status.st_mode))
        return notAnArchive();
    Result<Extent> extent = findDirectory(archive, static_cast<std::uint64_t>(status.st_size));
    if (!extent)
        return extent.failure();
    if (extent->count > mostZipEntries || extent->size > largestDirectory)
        return Failure{"has too many entries"};
    std::string bytes(extent->size, '\0');
    if (!readExactly(archive, extent->start, bytes.data(), bytes.size()))
        return damaged();

    std::vector<ZipEntry> entries;
    // The smallest entry bounds the count, so that a claimed one cannot ask for memory.
    entries.reserve(std::min<std::uint64_t>(extent->count, bytes.size() / entrySize));
    std::uint64_t packed = 0;
    std::string_view directory = bytes;
    while (entries.size() < extent->count) {
        std::optional<ZipEntry> entry = takeEntry(directory, *extent);
        if (!entry)
            return damaged();
        // Entries that share their bytes are how a small archive unpacks to an absurd size.
        packed += entry->packedSize;
        if (packed > extent->start)
            return damaged();
        entries.push_back(std::move(*entry));
    }
    return entries;
}

} // namespace dubrix
