#include "formats/images/PngEncoding.h"

#include "formats/images/IndexedImage.h"
#include "formats/images/PngChunks.h"

#include <algorithm>
#include <vector>
#include <zlib.h>

namespace dubrix {

namespace {

constexpr std::size_t dataChunkSize = std::size_t{1} << 17;

/// Writes one PNG stream into memory, its rows unfiltered.
class PngWriter {
public:
    explicit PngWriter(const PngHeader& header) : stream_(pngSignature) {
        appendPngChunk(stream_, "IHDR", header.chunkData());
        isSound_ = deflateInit2(&deflating_, Z_BEST_SPEED, Z_DEFLATED, MAX_WBITS, MAX_MEM_LEVEL,
                                Z_DEFAULT_STRATEGY) == Z_OK;
        rewindOutput();
    }
    ~PngWriter() { deflateEnd(&deflating_); }
    PngWriter(const PngWriter&) = delete;
    PngWriter& operator=(const PngWriter&) = delete;

    /// Adds a chunk that stands between the header and the rows.
    void addChunk(std::string_view type, std::string_view data) {
        appendPngChunk(stream_, type, data);
    }

    /// Adds the next row: its filter byte and its bytes.
    void addRow(std::vector<std::uint8_t>& row) {
        deflating_.next_in = row.data();
        deflating_.avail_in = static_cast<uInt>(row.size());
        while (isSound_ && deflating_.avail_in > 0) {
            isSound_ = deflate(&deflating_, Z_NO_FLUSH) == Z_OK;
            if (deflating_.avail_out == 0)
                emitChunk();
        }
    }

    /// The whole stream, once; nothing when the memory did not suffice.
    std::optional<std::string> finish() {
        int status = isSound_ ? Z_OK : Z_MEM_ERROR;
        while (status == Z_OK) {
            status = deflate(&deflating_, Z_FINISH);
            emitChunk();
        }
        if (status != Z_STREAM_END)
            return std::nullopt;
        appendPngChunk(stream_, "IEND", {});
        return std::move(stream_);
    }

private:
    void rewindOutput() {
        deflating_.next_out = reinterpret_cast<Bytef*>(output_.data());
        deflating_.avail_out = static_cast<uInt>(output_.size());
    }
    void emitChunk() {
        appendPngChunk(stream_, "IDAT",
                       std::string_view(output_).substr(0, output_.size() - deflating_.avail_out));
        rewindOutput();
    }

    std::string stream_;
    z_stream deflating_{};
    bool isSound_ = false;
    std::string output_ = std::string(dataChunkSize, '\0');
};

bool isOpaque(const RgbaImage& image) {
    std::uint8_t alphas = 255;
    const std::uint8_t* const bytes = image.bytes.get();
    for (std::size_t pixel = 0; pixel < image.pixelCount(); ++pixel)
        alphas &= bytes[pixel * RgbaImage::pixelSize + 3];
    return alphas == 255;
}

PngHeader headerOf(const RgbaImage& image, PngColorType type) {
    PngHeader header{image.width, image.height};
    header.colorType = type;
    return header;
}

/// Adds all rows unfiltered; `fillRow(line, target)` puts each one's bytes at `target`.
template<typename FillRow>
void addRows(PngWriter& writer, const PngHeader& header, FillRow fillRow) {
    // The first byte of a row names its filter, 0 for none.
    std::vector<std::uint8_t> row(1 +
                                  header.width * std::size_t{samplesPerPixel(header.colorType)});
    for (std::uint32_t line = 0; line < header.height; ++line) {
        fillRow(line, row.data() + 1);
        writer.addRow(row);
    }
}

std::optional<std::string> encodeIndexed(const RgbaImage& image, const IndexedImage& indexed) {
    std::string colors;
    std::string alphas;
    for (const auto& pixel : indexed.palette) {
        colors.append(reinterpret_cast<const char*>(pixel.data()), 3);
        alphas.push_back(static_cast<char>(pixel[3]));
    }
    const PngHeader header = headerOf(image, PngColorType::Palette);
    PngWriter writer(header);
    writer.addChunk("PLTE", colors);
    if (!isOpaque(image))
        writer.addChunk("tRNS", alphas);
    addRows(writer, header, [&](std::uint32_t line, std::uint8_t* target) {
        std::copy_n(indexed.indices.get() + std::size_t{line} * image.width, image.width, target);
    });
    return writer.finish();
}

std::optional<std::string> encodeRgba(const RgbaImage& image) {
    const PngHeader header = headerOf(image, PngColorType::Rgba);
    PngWriter writer(header);
    addRows(writer, header, [&](std::uint32_t line, std::uint8_t* target) {
        std::copy_n(image.row(line), image.rowSize(), target);
    });
    return writer.finish();
}

std::optional<std::string> encodeRgb(const RgbaImage& image) {
    const PngHeader header = headerOf(image, PngColorType::Rgb);
    PngWriter writer(header);
    addRows(writer, header, [&](std::uint32_t line, std::uint8_t* target) {
        const std::uint8_t* pixel = image.row(line);
        for (std::uint32_t x = 0; x < image.width; ++x, pixel += RgbaImage::pixelSize)
            target = std::copy_n(pixel, 3, target);
    });
    return writer.finish();
}

} // namespace

std::optional<std::string> encodePng(const RgbaImage& image) {
    if (const auto indexed = indexedImage(image))
        return encodeIndexed(image, *indexed);
    return isOpaque(image) ? encodeRgb(image) : encodeRgba(image);
}

} // namespace dubrix
