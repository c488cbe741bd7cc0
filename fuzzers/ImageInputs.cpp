#include "fuzzers/Mutation.h"
#include "tests/platform/SamplePng.h"

#include <cstdio>
#include <jpeglib.h>

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
    bool isPlaced = false;
    for (Chunk& chunk : chunks) {
        if (chunk.type != "IDAT")
            continue;
        chunk.data =
            isPlaced ? ""
                     : deflated(withChangedBytes(inflated(packed, windowBits), random), windowBits);
        isPlaced = true;
    }
}

void changeHeader(std::vector<Chunk>& chunks, Random& random) {
    for (Chunk& chunk : chunks) {
        auto header = chunk.type == "IHDR" ? PngHeader::fromChunkData(chunk.data) : std::nullopt;
        if (!header)
            continue;
        if (once(2, random))
            (once(2, random) ? header->width : header->height) =
                static_cast<std::uint32_t>(below(70, random));
        else if (once(2, random))
            header->isInterlaced = !header->isInterlaced;
        chunk.data = header->chunkData();
        if (once(3, random))
            chunk.data[8 + below(5, random)] = static_cast<char>(below(18, random));
    }
}

void splitOne(std::vector<Chunk>& chunks, Random& random) {
    const std::size_t index = below(chunks.size(), random);
    const std::size_t at = below(chunks[index].data.size() + 1, random);
    Chunk rest{chunks[index].type, chunks[index].data.substr(at)};
    chunks[index].data.resize(at);
    chunks.insert(chunks.begin() + static_cast<long>(index) + 1, std::move(rest));
}

void changeChunks(std::vector<Chunk>& chunks, Random& random) {
    const auto index = static_cast<long>(below(chunks.size(), random));
    switch (below(7, random)) {
    case 0:
        return changeRows(chunks, random);
    case 1:
        return changeHeader(chunks, random);
    case 2:
        return splitOne(chunks, random);
    case 3:
        std::swap(chunks[static_cast<std::size_t>(index)], anyOf(chunks, random));
        return;
    case 4:
        chunks.insert(chunks.begin() + index, Chunk(anyOf(chunks, random)));
        return;
    case 5:
        chunks.insert(chunks.begin() + index,
                      {anyOf(vocabulary(), random).substr(0, 4),
                       std::string(below(40, random), static_cast<char>(random()))});
        return;
    default:
        anyOf(chunks, random).data = withChangedBytes(anyOf(chunks, random).data, random);
    }
}

std::string sampleJpeg(int width, int height, int components, bool isProgressive) {
    jpeg_compress_struct jpeg{};
    jpeg_error_mgr errors{};
    jpeg.err = jpeg_std_error(&errors);
    jpeg_create_compress(&jpeg);
    unsigned char* bytes = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&jpeg, &bytes, &size);
    jpeg.image_width = static_cast<JDIMENSION>(width);
    jpeg.image_height = static_cast<JDIMENSION>(height);
    jpeg.input_components = components;
    jpeg.in_color_space = components == 1 ? JCS_GRAYSCALE : (components == 3 ? JCS_RGB : JCS_CMYK);
    jpeg_set_defaults(&jpeg);
    if (isProgressive)
        jpeg_simple_progression(&jpeg);
    jpeg_start_compress(&jpeg, TRUE);
    std::vector<JSAMPLE> row(static_cast<std::size_t>(width * components));
    while (jpeg.next_scanline < jpeg.image_height) {
        for (std::size_t index = 0; index < row.size(); ++index)
            row[index] = static_cast<JSAMPLE>(index * 7 + std::size_t{5} * jpeg.next_scanline);
        JSAMPROW rows[] = {row.data()};
        jpeg_write_scanlines(&jpeg, rows, 1);
    }
    jpeg_finish_compress(&jpeg);
    std::string result(reinterpret_cast<char*>(bytes), size);
    jpeg_destroy_compress(&jpeg);
    std::free(bytes);
    return result;
}

} // namespace

std::vector<std::string> seeds() {
    std::vector<std::string> all;
    for (const PngKind& kind :
         {PngKind{0, 1, false, true}, PngKind{0, 16, true, false}, PngKind{2, 8, false, true},
          PngKind{2, 16, true, true}, PngKind{3, 2, false, true}, PngKind{3, 8, true, false},
          PngKind{4, 8, false, false}, PngKind{6, 16, false, false}, PngKind{6, 8, true, false}})
        all.push_back(SamplePng(kind).bytes());
    CrushedPngFile file{.width = 9, .height = 7};
    const auto pixels = samplePixels(63);
    all.push_back(file.bytes(pixels));
    file.isInterlaced = true;
    file.dataChunks = 3;
    all.push_back(file.bytes(pixels));
    file.ignoresAlpha = true;
    file.hasZlibFrame = true;
    all.push_back(file.bytes(pixels));
    // Too many colours for a palette, with and without alpha.
    CrushedPngFile colorful{.width = 20, .height = 16};
    all.push_back(colorful.bytes(samplePixels(320)));
    colorful.ignoresAlpha = true;
    all.push_back(colorful.bytes(samplePixels(320)));
    all.push_back(CrushedPngFile{.width = 2}.bytes({{9, 99, 199, 200}, {1, 2, 3, 255}}));
    for (const PngColorType type : {PngColorType::Grey, PngColorType::Rgb, PngColorType::GreyAlpha})
        all.push_back(CrushedPngFile{}.assembled(
            {'\x50', 0, '\x20', '\2'}, {2, 2, 8, type},
            deflated(std::string(2 + std::size_t{4} * samplesPerPixel(type), '\1'), -15)));
    for (const int components : {1, 3, 4})
        all.push_back(sampleJpeg(19, 9, components, components == 3));
    all.push_back(sampleJpeg(8, 8, 3, false));
    return all;
}

const std::vector<std::string>& vocabulary() {
    using namespace std::string_literals;
    static const std::vector<std::string> words = {"IDAT",
                                                   "IHDR",
                                                   "PLTE",
                                                   "tRNS",
                                                   "IEND",
                                                   "CgBI",
                                                   "iDOT",
                                                   "gAMA",
                                                   "iCCP",
                                                   "zTXt",
                                                   "bKGD",
                                                   "eXIf",
                                                   "\xff\xd8",
                                                   "\xff\xc0",
                                                   "\xff\xc2",
                                                   "\xff\xc4",
                                                   "\xff\xda",
                                                   "\xff\xdb",
                                                   "\xff\xdd",
                                                   "\xff\xd9",
                                                   "\xff\xee\0\x0e"
                                                   "Adobe"s,
                                                   "\xff\xd0"};
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
