#include "fuzzers/Mutation.h"
#include "tests/formats/JpegFiles.h"

#include <utility>

namespace dubrix::fuzz {

namespace {

struct Chunk {
    std::string type;
    std::string data;
};

std::vector<Chunk> chunksOf(std::string_view bytes) {
    std::vector<Chunk> chunks;
    PngChunkReader reader(bytes);
    while (const auto chunk = reader.next())
        chunks.push_back({std::string(chunk->type), std::string(chunk->data)});
    return chunks;
}

std::string streamOf(const std::vector<Chunk>& chunks) {
    std::string stream(pngSignature);
    for (const Chunk& chunk : chunks)
        appendPngChunk(stream, chunk.type, chunk.data);
    return stream;
}

/// What comes out of a deflated stream, up to a size that a test can bear.
std::string inflated(const std::string& packed, int windowBits) {
    constexpr std::size_t most = std::size_t{1} << 16;
    std::string bytes(most, '\0');
    z_stream stream{};
    inflateInit2(&stream, windowBits);
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(packed.data()));
    stream.avail_in = static_cast<uInt>(packed.size());
    stream.next_out = reinterpret_cast<Bytef*>(bytes.data());
    stream.avail_out = static_cast<uInt>(bytes.size());
    inflate(&stream, Z_FINISH);
    bytes.resize(most - stream.avail_out);
    inflateEnd(&stream);
    return bytes;
}

/// Changes the rows themselves, below the compression, and packs them into one chunk again.
void changeRows(std::vector<Chunk>& chunks, Random& random) {
    const bool isRaw = chunks.front().type == "CgBI" && chunks.front().data.size() == 4 &&
                       (bigEndian32(chunks.front().data) & 0x10000000) != 0;
    const int windowBits = isRaw ? -15 : 15;
    std::string packed;
    for (const Chunk& chunk : chunks)
        if (chunk.type == "IDAT")
            packed += chunk.data;
    std::string changed =
        deflated(withChangedBytes(inflated(packed, windowBits), random), windowBits);
    for (Chunk& chunk : chunks)
        if (chunk.type == "IDAT")
            chunk.data = std::exchange(changed, "");
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

} // namespace

std::vector<std::string> seeds() {
    using enum PngColorType;
    std::vector<std::string> all;
    Random random(1);
    // Any of five is a filter; what is left over of them does no harm.
    std::string rows(4000, '\0');
    for (char& byte : rows)
        byte = static_cast<char>(below(5, random));
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
    auto chunks = chunksOf(bytes);
    if (chunks.empty())
        return withChangedBytes(bytes, random);
    for (std::size_t changes = 1 + below(3, random); changes > 0; --changes)
        changeChunks(chunks, random);
    return streamOf(chunks);
}

} // namespace dubrix::fuzz
