#include "formats/PngWriter.h"

#include <array>
#include <utility>
#include <zlib.h>

namespace dubrix {

namespace {

constexpr std::size_t dataChunkSize = std::size_t{1} << 17;

} // namespace

struct PngWriter::Deflater {
    explicit Deflater(Packing packing) {
        const int level = packing == Packing::stored ? Z_NO_COMPRESSION : Z_BEST_SPEED;
        isSound = deflateInit2(&stream, level, Z_DEFLATED, MAX_WBITS, MAX_MEM_LEVEL,
                               Z_DEFAULT_STRATEGY) == Z_OK;
        rewindOutput();
    }
    ~Deflater() { deflateEnd(&stream); }
    Deflater(const Deflater&) = delete;
    Deflater& operator=(const Deflater&) = delete;

    void rewindOutput() {
        stream.next_out = output.data();
        stream.avail_out = static_cast<uInt>(output.size());
    }

    void emitChunk(std::string& png) {
        const std::size_t size = output.size() - stream.avail_out;
        appendPngChunk(png, "IDAT", {reinterpret_cast<const char*>(output.data()), size});
        rewindOutput();
    }

    z_stream stream{};
    bool isSound = false;
    std::array<Bytef, dataChunkSize> output;
};

PngWriter::PngWriter(const PngHeader& header, Packing packing)
    : stream_(pngSignature),
      deflater_(std::make_unique<Deflater>(packing)) {
    appendPngChunk(stream_, "IHDR", header.chunkData());
}

PngWriter::~PngWriter() = default;

void PngWriter::addChunk(std::string_view type, std::string_view data) {
    appendPngChunk(stream_, type, data);
}

void PngWriter::addRow(std::string_view filteredRow) {
    z_stream& deflating = deflater_->stream;
    // zlib's input pointer is not const for historical reasons; it does not write through it.
    deflating.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(filteredRow.data()));
    deflating.avail_in = static_cast<uInt>(filteredRow.size());
    while (deflater_->isSound && deflating.avail_in > 0) {
        deflater_->isSound = deflate(&deflating, Z_NO_FLUSH) == Z_OK;
        if (deflating.avail_out == 0)
            deflater_->emitChunk(stream_);
    }
}

std::optional<std::string> PngWriter::finish() {
    if (!deflater_->isSound)
        return std::nullopt;
    int status = Z_OK;
    while (status == Z_OK) {
        status = deflate(&deflater_->stream, Z_FINISH);
        deflater_->emitChunk(stream_);
    }
    if (status != Z_STREAM_END)
        return std::nullopt;
    appendPngChunk(stream_, "IEND", {});
    return std::move(stream_);
}

} // namespace dubrix
