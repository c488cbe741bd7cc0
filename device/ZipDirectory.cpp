#include "device/ZipDirectory.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <limits>
#include <optional>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace dubrix {

namespace {

constexpr std::uint32_t entrySignature = 0x02014b50;
constexpr std::uint32_t endSignature = 0x06054b50;
constexpr std::uint32_t end64Signature = 0x06064b50;
constexpr std::uint32_t locator64Signature = 0x07064b50;
constexpr std::size_t entrySize = 46;
constexpr std::size_t endSize = 22;
constexpr std::size_t end64Size = 56;
constexpr std::size_t locator64Size = 20;
constexpr std::size_t longestComment = 0xffff;
constexpr std::uint16_t extra64 = 0x0001;
constexpr std::uint64_t narrow = 0xffffffff;
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
        return notAnArchive();
    std::size_t at = tail.size() - endSize;
    const auto isEnd = [&] {
        return littleEndian(tail.data() + at, 4) == endSignature &&
               at + endSize + littleEndian(tail.data() + at + 20, 2) <= tail.size();
    };
    while (!isEnd())
        if (at-- == 0)
            return notAnArchive();

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

/// Takes the 64-bit values that stand in the extra fields for those that did not fit.
bool widen(ZipEntry& entry, std::string_view extra) {
    while (extra.size() >= 4) {
        const auto kind = littleEndian(extra.data(), 2);
        const std::size_t size = littleEndian(extra.data() + 2, 2);
        extra.remove_prefix(4);
        if (size > extra.size())
            return kind != extra64; // padding that pretends to be a field is common and harmless
        std::string_view field = extra.substr(0, size);
        extra.remove_prefix(size);
        if (kind != extra64)
            continue;
        for (std::uint64_t* value : {&entry.size, &entry.packedSize, &entry.headerOffset}) {
            if (*value != narrow)
                continue;
            if (field.size() < 8)
                return false;
            *value = littleEndian(field.data(), 8);
            field.remove_prefix(8);
        }
        return true;
    }
    return true;
}

void setKind(ZipEntry& entry, unsigned host, std::uint32_t attributes) {
    constexpr unsigned unixHost = 3;
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
    if (!widen(entry, directory.substr(entrySize + nameSize, extraSize)) ||
        entry.headerOffset > std::numeric_limits<std::uint64_t>::max() - extent.shift)
        return std::nullopt;
    entry.headerOffset += extent.shift;
    directory.remove_prefix(whole);
    return isPlausible(entry, extent) ? std::optional(std::move(entry)) : std::nullopt;
}

} // namespace

bool readExactly(int file, std::uint64_t offset, char* bytes, std::size_t size) {
    while (size > 0) {
        const ssize_t got = ::pread(file, bytes, size, static_cast<off_t>(offset));
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return false;
        bytes += got;
        offset += static_cast<std::uint64_t>(got);
        size -= static_cast<std::size_t>(got);
    }
    return true;
}

std::uint64_t littleEndian(const char* bytes, int width) {
    std::uint64_t value = 0;
    for (int index = width - 1; index >= 0; --index)
        value = value << 8 | static_cast<unsigned char>(bytes[index]);
    return value;
}

Result<std::vector<ZipEntry>> readZipDirectory(int archive) {
    struct stat status {};
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
