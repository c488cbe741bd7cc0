#include "formats/images/PngChunks.h"

#include "formats/packing/Deflate.h"

namespace dubrix {

namespace {

constexpr std::size_t headerSize = 13;
constexpr std::size_t chunkFrameSize = 12; // length, type and checksum, four bytes each

void appendBigEndian32(std::string& bytes, std::uint32_t value) {
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes.push_back(static_cast<char>(value >> shift));
}

} // namespace

unsigned samplesPerPixel(PngColorType type) {
    switch (type) {
    case PngColorType::Grey:
    case PngColorType::Palette:
        return 1;
    case PngColorType::GreyAlpha:
        return 2;
    case PngColorType::Rgb:
        return 3;
    case PngColorType::Rgba:
        return 4;
    }
    return 0;
}

std::optional<PngHeader> PngHeader::fromChunkData(std::string_view data) {
    if (data.size() != headerSize)
        return std::nullopt;
    const auto byteAt = [data](std::size_t index) {
        return static_cast<std::uint8_t>(data[index]);
    };
    PngHeader header;
    header.width = bigEndian32(data);
    header.height = bigEndian32(data.substr(4));
    header.bitDepth = byteAt(8);
    header.colorType = static_cast<PngColorType>(byteAt(9));
    header.isInterlaced = byteAt(12) == 1;
    const bool isKnown = samplesPerPixel(header.colorType) != 0 && byteAt(10) == 0 &&
                         byteAt(11) == 0 && byteAt(12) <= 1;
    return isKnown ? std::optional(header) : std::nullopt;
}

std::string PngHeader::chunkData() const {
    std::string data;
    appendBigEndian32(data, width);
    appendBigEndian32(data, height);
    data.push_back(static_cast<char>(bitDepth));
    data.push_back(static_cast<char>(colorType));
    data.append(2, '\0');
    data.push_back(isInterlaced ? 1 : 0);
    return data;
}

PngChunkReader::PngChunkReader(std::string_view stream) {
    if (stream.starts_with(pngSignature))
        rest_ = stream.substr(pngSignature.size());
}

std::optional<PngChunk> PngChunkReader::next() {
    if (rest_.size() < chunkFrameSize)
        return std::nullopt;
    const std::size_t length = bigEndian32(rest_);
    if (length > rest_.size() - chunkFrameSize)
        return std::nullopt;
    const PngChunk chunk{rest_.substr(4, 4), rest_.substr(8, length)};
    if (checksum(rest_.substr(4, 4 + length)) != bigEndian32(rest_.substr(8 + length)))
        return std::nullopt;
    rest_.remove_prefix(chunkFrameSize + length);
    return chunk;
}

std::uint32_t bigEndian32(std::string_view fourBytes) {
    std::uint32_t value = 0;
    for (std::size_t index = 0; index < 4; ++index)
        value = value << 8 | static_cast<unsigned char>(fourBytes[index]);
    return value;
}

void appendPngChunk(std::string& stream, std::string_view type, std::string_view data) {
    appendBigEndian32(stream, static_cast<std::uint32_t>(data.size()));
    stream.append(type);
    stream.append(data);
    appendBigEndian32(stream, checksum(data, checksum(type)));
}

} // namespace dubrix
