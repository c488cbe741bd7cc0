#include "device/archive/ZipEntryReader.h"

#include "device/archive/ZipFormat.h"
#include "files/Descriptor.h"
#include "formats/packing/Deflate.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstdlib>
#include <sys/mman.h>
#include <zlib.h>

namespace dubrix {

namespace {

constexpr std::size_t largestPiece = std::size_t{256} << 10;
/// What all readers of the process together hold of entries that are unpacked whole. An entry that
/// finds no room goes through the buffers, which takes longer.
constexpr std::uint64_t mostHeld = std::uint64_t{48} << 20;

std::atomic<std::uint64_t> held{0};

/// Room for one entry, packed and unpacked.
class Room {
public:
    explicit Room(const ZipEntry& entry)
        : size_(std::max(entry.packedSize, entry.size) > mostHeld ? mostHeld + 1
                                                                  : entry.packedSize + entry.size),
          isThere_((held += size_) <= mostHeld) {}
    ~Room() { held -= size_; }
    Room(const Room&) = delete;
    Room& operator=(const Room&) = delete;

    bool isThere() const { return isThere_; }

private:
    const std::uint64_t size_;
    const bool isThere_;
};

struct Freeing {
    void operator()(char* space) const { std::free(space); }
};
using Space = std::unique_ptr<char[], Freeing>;

/// Null when there is no memory. Much is asked for in large pages: a fault for every small one
/// would take longer than the checksum of what it holds.
Space makeSpace(std::size_t size) {
    constexpr std::size_t largePage = std::size_t{2} << 20;
    if (size < largePage)
        return Space(static_cast<char*>(std::malloc(std::max(size, std::size_t{1}))));
    const std::size_t whole = (size + largePage - 1) / largePage * largePage;
    Space space(static_cast<char*>(std::aligned_alloc(largePage, whole)));
#ifdef MADV_HUGEPAGE
    if (space)
        ::madvise(space.get(), whole, MADV_HUGEPAGE);
#endif
    return space;
}

Failure damagedEntry(const ZipEntry& entry) {
    return Failure{"is damaged at " + entry.name};
}

Failure notEnoughMemory() {
    return Failure{"cannot be unpacked: not enough memory"};
}

} // namespace

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

Outcome ZipEntryReader::inflateWhole(const ZipEntry& entry, std::uint64_t offset,
                                     const Sink& sink) {
    const auto packedSize = static_cast<std::size_t>(entry.packedSize);
    const auto size = static_cast<std::size_t>(entry.size);
    const Space packed = makeSpace(packedSize);
    const Space made = makeSpace(size);
    if (!packed || !made)
        return notEnoughMemory();
    if (!readExactly(archive_, offset, packed.get(), packedSize) ||
        !inflater_->whole.inflate({packed.get(), packedSize}, made.get(), size))
        return damagedEntry(entry);
    for (std::string_view left(made.get(), size); !left.empty();) {
        const std::string_view piece = left.substr(0, largestPiece);
        if (Outcome done = pass(entry, piece, sink); !done)
            return done;
        left.remove_prefix(piece.size());
    }
    return Success{};
}

Outcome ZipEntryReader::inflateDeflated(const ZipEntry& entry, std::uint64_t offset,
                                        const Sink& sink) {
    if (const Room room(entry); room.isThere())
        return inflateWhole(entry, offset, sink);
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
