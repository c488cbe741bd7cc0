#pragma once

#include "device/archive/ZipDirectory.h"
#include "files/Result.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace dubrix {

/// Unpacks entries of one archive, in 48 MB that all readers of the process share and half a
/// megabyte of each one's own. It reads by position and leaves the descriptor's own alone, so that
/// several readers may work on one archive at a time.
class ZipEntryReader {
public:
    /// Takes the next bytes, at most 256 KiB; a failure ends the reading with it.
    using Sink = std::function<Outcome(std::string_view bytes)>;

    /// `archive` stays the caller's and open as long as the reader is used.
    explicit ZipEntryReader(int archive);
    ~ZipEntryReader();
    ZipEntryReader(const ZipEntryReader&) = delete;
    ZipEntryReader& operator=(const ZipEntryReader&) = delete;

    /// Hands all of the entry's bytes to `sink`, never more than `entry.size`. Succeeds only when
    /// the bytes are as many as announced and their checksum is right.
    Outcome read(const ZipEntry& entry, const Sink& sink);

    /// The same into one text; fails for more than `limit` bytes.
    Result<std::string> readWhole(const ZipEntry& entry, std::size_t limit);

private:
    class Room;
    struct Inflater;

    Outcome copyStored(const ZipEntry& entry, std::uint64_t offset, const Sink& sink);
    Outcome inflateWhole(const ZipEntry& entry, std::uint64_t offset, char* room, const Sink& sink);
    Outcome inflateDeflated(const ZipEntry& entry, std::uint64_t offset, const Sink& sink);
    Outcome pass(const ZipEntry& entry, std::string_view bytes, const Sink& sink);

    int archive_;
    std::unique_ptr<Inflater> inflater_;
    std::string input_;
    std::string output_;
    std::uint64_t passed_ = 0;
    std::uint32_t crc_ = 0;
};

} // namespace dubrix
