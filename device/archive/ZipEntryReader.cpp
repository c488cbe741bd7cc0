#include "device/archive/ZipEntryReader.h"

#include "device/archive/ZipFormat.h"
#include "files/Descriptor.h"
#include "formats/packing/Deflate.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <sys/mman.h>
#include <utility>
#include <zlib.h>

namespace dubrix {

namespace {

constexpr std::size_t largestPiece = std::size_t{256} << 10;
/// What all readers of the process together hold of entries that are unpacked whole. An entry that
/// finds no room goes through the buffers, which takes longer.
constexpr std::size_t mostHeld = std::size_t{48} << 20;
/// So much a reader keeps for its next entry. New memory has to be cleared by the system, which
/// takes as long as half the unpacking.
constexpr std::size_t mostKept = std::size_t{8} << 20;

std::atomic<std::size_t> held{0};

struct Freeing {
    void operator()(char* space) const { std::free(space); }
};

Failure damagedEntry(const ZipEntry& entry) {
    return Failure{"is damaged at " + entry.name};
}

Failure notEnoughMemory() {
    return Failure{"cannot be unpacked: not enough memory"};
}

} // namespace

/// Room for one entry, packed and unpacked.
class ZipEntryReader::Room {
public:
    Room() = default;
    ~Room() { giveBack(); }
    Room(const Room&) = delete;
    Room& operator=(const Room&) = delete;

    /// Null when other readers hold too much, or there is no memory.
    char* ofSize(std::uint64_t size) {
        if (space_ && size <= size_)
            return space_.get();
        giveBack();
        if (size > mostHeld)
            return nullptr;
        // Large pages: a fault for every small one would take longer than the checksum of what it
        // holds.
        constexpr std::size_t largePage = std::size_t{2} << 20;
        size_ = (static_cast<std::size_t>(size) + largePage - 1) / largePage * largePage;
        const std::size_t heldByAll = held += size_;
        if (heldByAll <= mostHeld)
            space_.reset(static_cast<char*>(std::aligned_alloc(largePage, size_)));
        if (!space_) {
            giveBack();
            return nullptr;
        }
#ifdef MADV_HUGEPAGE
        ::madvise(space_.get(), size_, MADV_HUGEPAGE);
#endif
        return space_.get();
    }
    void keepLittle() {
        if (size_ > mostKept)
            giveBack();
    }

private:
    void giveBack() {
        space_.reset();
        held -= std::exchange(size_, 0);
    }

    std::unique_ptr<char[], Freeing> space_;
    std::size_t size_ = 0;
};

/// A raw deflate stream (no zlib header), reused from entry to entry.
struct ZipEntryReader::Inflater {
    Inflater() : ready(inflateInit2(&stream, -MAX_WBITS) == Z_OK) {}
    ~Inflater() {
        if (ready)
            inflateEnd(&stream);
    }
    Inflater(const Inflater&) = delete;
    Inflater& operator=(const Inflater&) = delete;

    z_stream stream{};
    bool ready;
    WholeInflater whole;
    Room room;
};

ZipEntryReader::ZipEntryReader(int archive)
    : archive_(archive),
      inflater_(std::make_unique<Inflater>()),
      input_(largestPiece, '\0'),
      output_(largestPiece, '\0') {}

ZipEntryReader::~ZipEntryReader() = default;

Outcome ZipEntryReader::read(const ZipEntry& entry, const Sink& sink) {
    if (entry.encrypted)
        return Failure{"is encrypted"};
    std::array<char, localSize> header{};
    if (!readExactly(archive_, entry.headerOffset, header.data(), header.size()) ||
        littleEndian(header.data(), 4) != localSignature)
        return damagedEntry(entry);
    const std::uint64_t offset = entry.headerOffset + localSize +
                                 littleEndian(header.data() + 26, 2) +
                                 littleEndian(header.data() + 28, 2);
    passed_ = 0;
    crc_ = 0;
    if (entry.method != 0 && entry.method != Z_DEFLATED)
        return Failure{"packs " + entry.name + " by an unknown method"};
    Outcome done =
        entry.method == 0 ? copyStored(entry, offset, sink) : inflateDeflated(entry, offset, sink);
    if (done && (passed_ != entry.size || crc_ != entry.crc))
        return damagedEntry(entry);
    return done;
}

Result<std::string> ZipEntryReader::readWhole(const ZipEntry& entry, std::size_t limit) {
    if (entry.size > limit)
        return Failure{"has an absurdly large " + entry.name};
    std::string bytes;
    Outcome done = read(entry, [&](std::string_view some) -> Outcome {
        bytes += some;
        return Success{};
    });
    if (!done)
        return done.failure();
    return bytes;
}

Outcome ZipEntryReader::copyStored(const ZipEntry& entry, std::uint64_t offset, const Sink& sink) {
    for (std::uint64_t left = entry.packedSize; left > 0;) {
        const auto now = static_cast<std::size_t>(std::min<std::uint64_t>(left, largestPiece));
        if (!readExactly(archive_, offset, input_.data(), now))
            return damagedEntry(entry);
        if (Outcome done = pass(entry, {input_.data(), now}, sink); !done)
            return done;
        offset += now;
        left -= now;
    }
    return Success{};
}

Outcome ZipEntryReader::inflateWhole(const ZipEntry& entry, std::uint64_t offset, char* room,
                                     const Sink& sink) {
    const std::string_view packed(room, static_cast<std::size_t>(entry.packedSize));
    char* const made = room + packed.size();
    const auto size = static_cast<std::size_t>(entry.size);
    if (!readExactly(archive_, offset, room, packed.size()) ||
        !inflater_->whole.inflate(packed, made, size))
        return damagedEntry(entry);
    for (std::string_view left(made, size); !left.empty();) {
        const std::string_view piece = left.substr(0, largestPiece);
        if (Outcome done = pass(entry, piece, sink); !done)
            return done;
        left.remove_prefix(piece.size());
    }
    return Success{};
}

Outcome ZipEntryReader::inflateDeflated(const ZipEntry& entry, std::uint64_t offset,
                                        const Sink& sink) {
    // Both sizes are an archive's word: their sum may be no number.
    const std::uint64_t size = std::max(entry.packedSize, entry.size) > mostHeld
                                   ? mostHeld + 1
                                   : entry.packedSize + entry.size;
    if (char* const room = inflater_->room.ofSize(size)) {
        Outcome done = inflateWhole(entry, offset, room, sink);
        inflater_->room.keepLittle();
        return done;
    }
    z_stream& stream = inflater_->stream;
    if (!inflater_->ready || inflateReset(&stream) != Z_OK)
        return notEnoughMemory();
    std::uint64_t left = entry.packedSize;
    stream.avail_in = 0;
    for (int state = Z_OK; state != Z_STREAM_END;) {
        if (stream.avail_in == 0 && left > 0) {
            const auto now = static_cast<std::size_t>(std::min<std::uint64_t>(left, largestPiece));
            if (!readExactly(archive_, offset, input_.data(), now))
                return damagedEntry(entry);
            stream.next_in = reinterpret_cast<Bytef*>(input_.data());
            stream.avail_in = static_cast<uInt>(now);
            offset += now;
            left -= now;
        }
        stream.next_out = reinterpret_cast<Bytef*>(output_.data());
        stream.avail_out = static_cast<uInt>(largestPiece);
        // Without input it still hands out what it holds back, and reports when that is nothing.
        state = inflate(&stream, Z_NO_FLUSH);
        if (state != Z_OK && state != Z_STREAM_END)
            return damagedEntry(entry);
        const std::string_view made(output_.data(), largestPiece - stream.avail_out);
        if (Outcome done = pass(entry, made, sink); !done)
            return done;
    }
    return Success{};
}

Outcome ZipEntryReader::pass(const ZipEntry& entry, std::string_view bytes, const Sink& sink) {
    passed_ += bytes.size();
    if (passed_ > entry.size)
        return damagedEntry(entry);
    crc_ = checksum(bytes, crc_);
    return bytes.empty() ? Outcome(Success{}) : sink(bytes);
}

} // namespace dubrix
