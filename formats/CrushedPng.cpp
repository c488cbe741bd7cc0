#include "formats/CrushedPng.h"

#include "formats/PngRows.h"
#include "formats/PngWriter.h"

#include <algorithm>
#include <vector>
#include <zlib.h>

namespace dubrix {

namespace {

constexpr std::uint32_t rawDeflateBit = 0x10000000;
constexpr std::uint32_t alphaBits = 0xf;
constexpr std::uint32_t alphaIsIgnored = 6;

/// What of a crushed PNG matters, views into its bytes.
struct CrushedParts {
    std::uint32_t flags = 0;
    PngHeader header;
    std::vector<std::string_view> data;
};

std::optional<CrushedParts> crushedParts(std::string_view bytes) {
    PngChunkReader reader(bytes);
    const auto first = reader.next();
    const auto second = reader.next();
    if (!second || first->type != "CgBI" || first->data.size() != 4 || second->type != "IHDR")
        return std::nullopt;
    const auto header = PngHeader::fromChunkData(second->data);
    if (!header)
        return std::nullopt;
    CrushedParts parts{bigEndian32(first->data), *header, {}};
    while (const auto chunk = reader.next()) {
        if (chunk->type == "IEND")
            return parts;
        if (chunk->type == "IDAT")
            parts.data.push_back(chunk->data);
    }
    return std::nullopt;
}

/// Inflates a stream that is spread over several pieces, just as far as it is asked to: nothing
/// beyond the size that the header declares is ever unpacked.
class PiecewiseInflater {
public:
    PiecewiseInflater(const std::vector<std::string_view>& pieces, bool isRaw) : pieces_(pieces) {
        isSound_ = inflateInit2(&stream_, isRaw ? -MAX_WBITS : MAX_WBITS) == Z_OK;
    }
    ~PiecewiseInflater() { inflateEnd(&stream_); }
    PiecewiseInflater(const PiecewiseInflater&) = delete;
    PiecewiseInflater& operator=(const PiecewiseInflater&) = delete;

    /// Fills `row` whole; false when the stream ends before or is damaged.
    bool read(std::vector<std::uint8_t>& row) {
        stream_.next_out = row.data();
        stream_.avail_out = static_cast<uInt>(row.size());
        while (isSound_) {
            // Asked first even without input: zlib may still hold the rest of a long match.
            const int status = inflate(&stream_, Z_NO_FLUSH);
            if (stream_.avail_out == 0)
                return true;
            isSound_ = (status == Z_OK || status == Z_BUF_ERROR) &&
                       (stream_.avail_in > 0 || takeNextPiece());
        }
        return false;
    }

private:
    bool takeNextPiece() {
        while (next_ < pieces_.size() && pieces_[next_].empty())
            ++next_;
        if (next_ == pieces_.size())
            return false;
        const std::string_view piece = pieces_[next_++];
        // zlib's input pointer is not const for historical reasons; it does not write through it.
        stream_.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(piece.data()));
        stream_.avail_in = static_cast<uInt>(piece.size());
        return true;
    }

    const std::vector<std::string_view>& pieces_;
    std::size_t next_ = 0;
    z_stream stream_{};
    bool isSound_ = false;
};

std::uint8_t unassociated(std::uint8_t color, std::uint8_t alpha) {
    if (alpha == 0)
        return 0;
    const unsigned divided = (color * 255U + alpha / 2U) / alpha;
    return static_cast<std::uint8_t>(std::min(divided, 255U));
}

/// Turns one unfiltered row (after its filter byte) into what a standard PNG holds.
void standardize(std::vector<std::uint8_t>& row, PngColorType type, bool ignoresAlpha) {
    const std::size_t samples = samplesPerPixel(type);
    const bool hasColors = samples >= 3;
    const bool hasAlpha = samples % 2 == 0;
    for (std::size_t start = 1; start < row.size(); start += samples) {
        std::uint8_t* const pixel = &row[start];
        if (hasColors)
            std::swap(pixel[0], pixel[2]);
        if (!hasAlpha)
            continue;
        std::uint8_t& alpha = pixel[samples - 1];
        if (ignoresAlpha)
            alpha = 255;
        if (alpha == 255)
            continue;
        for (std::size_t sample = 0; sample + 1 < samples; ++sample)
            pixel[sample] = unassociated(pixel[sample], alpha);
    }
}

bool isConvertible(const CrushedParts& parts) {
    const PngHeader& header = parts.header;
    if (header.bitDepth != 8 || header.colorType == PngColorType::palette ||
        !isWorkableImageSize(header.width, header.height))
        return false;
    std::uint64_t deflated = 0;
    for (const std::string_view piece : parts.data)
        deflated += piece.size();
    const std::uint64_t pixels = std::uint64_t{header.width} * header.height;
    return isPossibleInflation(deflated, pixels * samplesPerPixel(header.colorType));
}

} // namespace

bool isCrushedPng(std::string_view bytes) {
    return bytes.starts_with(pngSignature) && bytes.size() >= 16 && bytes.substr(12, 4) == "CgBI";
}

std::optional<std::string> standardPngFromCrushed(std::string_view bytes) {
    const auto parts = crushedParts(bytes);
    if (!parts || !isConvertible(*parts))
        return std::nullopt;
    const PngHeader& header = parts->header;
    const std::size_t pixelSize = samplesPerPixel(header.colorType);
    const bool ignoresAlpha = (parts->flags & alphaBits) == alphaIsIgnored;
    PiecewiseInflater inflater(parts->data, (parts->flags & rawDeflateBit) != 0);
    PngWriter writer(header, PngWriter::Packing::stored);
    for (const PngPass& pass : pngPasses(header)) {
        const std::size_t rowSize = 1 + pass.width * pixelSize;
        std::vector<std::uint8_t> above(rowSize);
        std::vector<std::uint8_t> row(rowSize);
        std::vector<std::uint8_t> standard;
        for (std::uint32_t line = 0; line < pass.height; ++line) {
            if (!inflater.read(row) || !unfilterPngRow(row, above, pixelSize))
                return std::nullopt;
            standard = row;
            standardize(standard, header.colorType, ignoresAlpha);
            writer.addRow({reinterpret_cast<const char*>(standard.data()), standard.size()});
            row.swap(above);
        }
    }
    std::vector<std::uint8_t> beyond(1);
    return inflater.read(beyond) ? std::nullopt : writer.finish();
}

} // namespace dubrix
