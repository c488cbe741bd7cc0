#include "formats/images/ImageDecoding.h"

#include "formats/images/PngChunks.h"

#include <algorithm>
#include <csetjmp>
#include <cstring>
#include <png.h>

namespace dubrix {

namespace {

/// What is read of image data that nobody asked for, in order to find its end. It may unpack to a
/// thousand times as much, and nothing but time comes of it.
constexpr std::size_t surplusLimit = std::size_t{64} << 10;

/// libpng's reading state. Its errors come back by longjmp, so the functions that call into it
/// below hold nothing that would need a destructor.
class PngReading {
public:
    PngReading(std::string_view bytes, DataChecksum checksum)
        : bytes_(bytes),
          rest_(bytes),
          checksum_(checksum) {
        png_ = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, &fail, &ignoreWarning);
        if (png_ != nullptr)
            info_ = png_create_info_struct(png_);
    }
    ~PngReading() { png_destroy_read_struct(&png_, &info_, nullptr); }
    PngReading(const PngReading&) = delete;
    PngReading& operator=(const PngReading&) = delete;

    /// Reads what stands before the pixels; false for a damaged or unacceptable image.
    bool readHeader() {
        if (info_ == nullptr || setjmp(png_jmpbuf(png_)) != 0)
            return false;
        const std::size_t available = rest_.size();
        png_set_read_fn(png_, this, &giveBytes);
        if (checksum_ == DataChecksum::Ignored)
            png_set_option(png_, PNG_IGNORE_ADLER32, PNG_OPTION_ON);
        // What every common decoder passes over: surplus data, transparency of the wrong length.
        png_set_benign_errors(png_, 1);
        // Texts and profiles can unpack to megabytes, and none changes a pixel here.
        png_set_keep_unknown_chunks(png_, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
        png_read_info(png_, info_);
        if (!isWorkableImageSize(width(), height()) ||
            !isPossibleInflation(available,
                                 std::uint64_t{png_get_rowbytes(png_, info_)} * height()))
            return false;
        png_set_expand(png_);
        png_set_scale_16(png_);
        png_set_gray_to_rgb(png_);
        png_set_add_alpha(png_, 0xff, PNG_FILLER_AFTER);
        png_set_read_user_transform_fn(png_, &countRow);
        passes_ = png_set_interlace_handling(png_);
        png_read_update_info(png_, info_);
        rowsLeft_ = storedRows();
        return png_get_rowbytes(png_, info_) == width() * RgbaImage::pixelSize;
    }

    /// Reads the pixels and the rest of the stream; false when anything is damaged or missing.
    bool readPixels(RgbaImage& image) {
        if (setjmp(png_jmpbuf(png_)) != 0)
            return surplusLeft_ == 0 && hasEnd();
        for (int pass = 0; pass < passes_; ++pass) {
            for (std::uint32_t line = 0; line < image.height; ++line)
                png_read_row(png_, image.row(line), nullptr);
        }
        arePixelsRead_ = true;
        png_read_end(png_, nullptr);
        return true;
    }

    std::uint32_t width() const { return png_get_image_width(png_, info_); }
    std::uint32_t height() const { return png_get_image_height(png_, info_); }

private:
    [[noreturn]] static void fail(png_structp png, png_const_charp) { png_longjmp(png, 1); }
    static void ignoreWarning(png_structp, png_const_charp) {}

    static void giveBytes(png_structp png, png_bytep target, std::size_t size) {
        auto& reading = *static_cast<PngReading*>(png_get_io_ptr(png));
        if (size > reading.rest_.size())
            png_error(png, "cut short");
        if (reading.rowsLeft_ == 0 && !reading.arePixelsRead_) {
            reading.surplusLeft_ -= std::min(size, reading.surplusLeft_);
            if (reading.surplusLeft_ == 0)
                png_error(png, "far too much data");
        }
        std::memcpy(target, reading.rest_.data(), size);
        reading.rest_.remove_prefix(size);
    }

    static void countRow(png_structp png, png_row_infop, png_bytep) {
        --static_cast<PngReading*>(png_get_io_ptr(png))->rowsLeft_;
    }

    std::size_t storedRows() const {
        if (png_get_interlace_type(png_, info_) == PNG_INTERLACE_NONE)
            return height();
        std::size_t rows = 0;
        for (int pass = 0; pass < PNG_INTERLACE_ADAM7_PASSES; ++pass)
            if (PNG_PASS_COLS(width(), pass) > 0)
                rows += PNG_PASS_ROWS(height(), pass);
        return rows;
    }

    bool hasEnd() const {
        PngChunkReader chunks(bytes_);
        while (const auto chunk = chunks.next())
            if (chunk->type == "IEND")
                return true;
        return false;
    }

    const std::string_view bytes_;
    std::string_view rest_;
    const DataChecksum checksum_;
    /// Rows that libpng has not unpacked yet, of all passes together. After the last one it goes on
    /// to the end of the compressed data.
    std::size_t rowsLeft_ = 0;
    std::size_t surplusLeft_ = surplusLimit;
    bool arePixelsRead_ = false;
    png_structp png_ = nullptr;
    png_infop info_ = nullptr;
    int passes_ = 0;
};

} // namespace

std::optional<RgbaImage> decodePng(std::string_view bytes, DataChecksum checksum) {
    PngReading reading(bytes, checksum);
    if (!reading.readHeader())
        return std::nullopt;
    RgbaImage image(reading.width(), reading.height());
    if (!reading.readPixels(image))
        return std::nullopt;
    return image;
}

} // namespace dubrix
