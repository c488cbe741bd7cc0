#include "formats/images/MonochromeRemap.h"
#include "formats/images/PngEncoding.h"
#include "fuzzers/Target.h"
#include "tests/formats/JpegFiles.h"

#include <utility>

namespace dubrix::fuzz {

namespace {

struct Chunk {
    std::string type;
    std::string data;
};

/// Rows with any of the five filters each, however long they are; what is left over does no harm.
std::string anyRows(Random& random) {
    std::string rows(4000, '\0');
    for (char& byte : rows)
        byte = static_cast<char>(below(5, random));
    return rows;
}

/// Puts other rows below the compression.
void changeRows(std::vector<Chunk>& chunks, Random& random) {
    const bool isRaw = chunks.front().type == "CgBI" && chunks.front().data.size() == 4 &&
                       (bigEndian32(chunks.front().data) & 0x10000000) != 0;
    std::string rows =
        deflated(withChangedBytes(anyRows(random), random), isRaw ? -MAX_WBITS : MAX_WBITS);
    for (Chunk& chunk : chunks)
        if (chunk.type == "IDAT")
            chunk.data = std::exchange(rows, "");
}

void splitOne(std::vector<Chunk>& chunks, std::size_t index, Random& random) {
    const std::size_t at = below(chunks[index].data.size() + 1, random);
    Chunk rest{chunks[index].type, chunks[index].data.substr(at)};
    chunks[index].data.resize(at);
    chunks.insert(chunks.begin() + static_cast<long>(index) + 1, std::move(rest));
}

void changeChunks(std::vector<Chunk>& chunks, Random& random) {
    const std::size_t index = below(chunks.size(), random);
    std::string& data = chunks[index].data;
    switch (below(6, random)) {
    case 0:
        return changeRows(chunks, random);
    case 1: // such as a size, a depth or a type in the header
        if (Chunk& header = chunks[below(2, random) % chunks.size()]; !header.data.empty())
            header.data[below(header.data.size(), random)] = static_cast<char>(below(70, random));
        return;
    case 2:
        return splitOne(chunks, index, random);
    case 3:
        return std::swap(chunks[index], anyOf(chunks, random));
    case 4:
        chunks.push_back({anyOf(vocabulary(), random).substr(0, 4), anyOf(chunks, random).data});
        return std::swap(chunks[index], chunks.back());
    default:
        data = withChangedBytes(data, random);
    }
}

bool samePixels(const RgbaImage& left, const RgbaImage& right, std::size_t firstSample) {
    if (left.width != right.width || left.height != right.height)
        return false;
    for (std::size_t at = 0; at < left.pixelCount() * RgbaImage::pixelSize; ++at)
        if (at % RgbaImage::pixelSize >= firstSample && left.bytes[at] != right.bytes[at])
            return false;
    return true;
}

} // namespace

void tryInput(std::string_view bytes) {
    const auto image = decodeImage(bytes);
    const auto tinted = monochromePng(bytes, 0.2F, 0.6F, 0.9F);
    require(tinted.has_value() == image.has_value(), "what can be decoded can be tinted");
    if (!image)
        return;
    const auto again = decodePng(*tinted);
    require(again && samePixels(*image, *again, 3), "a tint keeps the size and the alpha");
    require(monochromePng(*tinted, 0.2F, 0.6F, 0.9F) == tinted,
            "a tint of a tint is the same file");
    const auto encoded = encodePng(*image);
    const auto decoded = encoded ? decodePng(*encoded) : std::nullopt;
    require(decoded && samePixels(*image, *decoded, 0), "an encoded image is the same image");
}

std::vector<std::string> seeds() {
    using enum PngColorType;
    std::vector<std::string> all;
    Random random(1);
    const std::string rows = anyRows(random);
    for (const PngHeader& header : {PngHeader{21, 11, 1, Grey},
                                    {21, 11, 16, Grey, true},
                                    {21, 11, 8, Rgb},
                                    {21, 11, 16, Rgb, true},
                                    {21, 11, 2, Palette},
                                    {21, 11, 8, Palette, true},
                                    {21, 11, 8, GreyAlpha},
                                    {21, 11, 16, Rgba},
                                    {21, 11, 8, Rgba, true}})
        for (const std::string_view transparency : {"", "\0\1\0\1\0\1"}) {
            std::vector<PngChunk> chunks;
            if (header.colorType == Palette)
                chunks.push_back({"PLTE", "redGRNbluGRY"});
            if (!transparency.empty())
                chunks.push_back({"tRNS", transparency});
            all.push_back(pngOf(header, rows, chunks));
        }
    for (const CrushedPng& kind : {CrushedPng(), {false, 3, false}, {true, 3, true}}) {
        all.push_back(kind.of(samplePixels(63), 9));
        all.push_back(kind.of(samplePixels(320), 20)); // too many colours for a palette
        for (const PngColorType type : {Grey, Rgb, GreyAlpha})
            all.push_back(kind.of({2, 2, 8, type, true}, std::string(20, '\1')));
    }
    const std::string samples(std::size_t{12} * 19 * 9, 'J');
    for (const JpegKind& kind :
         {JpegKind(), {JCS_RGB, true}, {JCS_GRAYSCALE}, {JCS_CMYK}, {JCS_CMYK, true, true}})
        all.push_back(jpegOf(kind, samples, 19));
    return all;
}

const std::vector<std::string>& vocabulary() {
    static const std::vector<std::string> words =
        wordsOf("IDAT|IHDR|PLTE|tRNS|IEND|CgBI|iDOT|gAMA|iCCP|zTXt|bKGD|eXIf|\xff\xd8|\xff\xc0|"
                "\xff\xc2|\xff\xc4|\xff\xda|\xff\xdb|\xff\xdd|\xff\xd9|\xff\xee|Adobe|\xff\xd0");
    return words;
}

std::string restructured(const std::string& bytes, Random& random) {
    std::vector<Chunk> chunks;
    PngChunkReader reader(bytes);
    while (const auto chunk = reader.next())
        chunks.push_back({std::string(chunk->type), std::string(chunk->data)});
    if (chunks.empty())
        return withChangedBytes(bytes, random);
    for (std::size_t changes = 1 + below(3, random); changes > 0; --changes)
        changeChunks(chunks, random);
    std::string stream(pngSignature);
    for (const Chunk& chunk : chunks)
        appendPngChunk(stream, chunk.type, chunk.data);
    return stream;
}

} // namespace dubrix::fuzz
