#include "formats/images/ImageDecoding.h"

#include "formats/images/PngChunks.h"

#include <csetjmp>
#include <cstdio> // jpeglib.h needs FILE
#include <jpeglib.h>

namespace dubrix {

namespace {

/// More scans than any encoder makes of a progressive image; each costs a walk over all pixels.
constexpr int scanLimit = 100;

constexpr long memoryLimit = 512L << 20;

/// libjpeg's reading state. Its errors come back by longjmp, so the functions that call into it
/// below hold nothing that would need a destructor.
class JpegReading {
public:
    explicit JpegReading(std::string_view bytes) : bytes_(bytes) {
        jpeg_.err = jpeg_std_error(&errors_);
        errors_.error_exit = &fail;
        errors_.emit_message = [](j_common_ptr jpeg, int level) {
            if (level < 0) // corrupt data that libjpeg would fill up with grey
                fail(jpeg);
        };
        progress_.progress_monitor = [](j_common_ptr jpeg) {
            if (reinterpret_cast<j_decompress_ptr>(jpeg)->input_scan_number > scanLimit)
                fail(jpeg);
        };
        jpeg_.client_data = this;
    }
    ~JpegReading() { jpeg_destroy_decompress(&jpeg_); }
    JpegReading(const JpegReading&) = delete;
    JpegReading& operator=(const JpegReading&) = delete;

    /// Reads what stands before the pixels; false for a damaged or unacceptable image.
    bool readHeader() {
        if (setjmp(escape_) != 0)
            return false;
        jpeg_create_decompress(&jpeg_);
        jpeg_.progress = &progress_;
        jpeg_.mem->max_memory_to_use = memoryLimit;
        jpeg_mem_src(&jpeg_, reinterpret_cast<const unsigned char*>(bytes_.data()), bytes_.size());
        jpeg_read_header(&jpeg_, TRUE);
        const bool isInks =
            jpeg_.jpeg_color_space == JCS_CMYK || jpeg_.jpeg_color_space == JCS_YCCK;
        jpeg_.out_color_space = isInks ? JCS_CMYK : JCS_EXT_RGBA;
        return isWorkableImageSize(jpeg_.image_width, jpeg_.image_height);
    }

    /// Reads the pixels and the rest of the stream; false when anything is damaged or missing.
    bool readPixels(RgbaImage& image) {
        if (setjmp(escape_) != 0)
            return false;
        jpeg_start_decompress(&jpeg_);
        while (jpeg_.output_scanline < image.height) {
            JSAMPROW row = image.row(jpeg_.output_scanline);
            jpeg_read_scanlines(&jpeg_, &row, 1);
            if (jpeg_.out_color_space == JCS_CMYK)
                lightFromInks(row, image.width);
        }
        jpeg_finish_decompress(&jpeg_);
        return true;
    }

    std::uint32_t width() const { return jpeg_.image_width; }
    std::uint32_t height() const { return jpeg_.image_height; }

private:
    [[noreturn]] static void fail(j_common_ptr jpeg) {
        std::longjmp(static_cast<JpegReading*>(jpeg->client_data)->escape_, 1);
    }

    /// Cyan, magenta, yellow, black to opaque RGB. Files with the Adobe marker hold the inks
    /// inverted, 255 for none.
    void lightFromInks(std::uint8_t* row, std::uint32_t pixels) const {
        const unsigned inversion = jpeg_.saw_Adobe_marker ? 0 : 255;
        for (std::uint8_t* pixel = row; pixel != row + pixels * RgbaImage::pixelSize;
             pixel += RgbaImage::pixelSize) {
            const unsigned black = pixel[3] ^ inversion;
            for (int ink = 0; ink < 3; ++ink)
                pixel[ink] = static_cast<std::uint8_t>((pixel[ink] ^ inversion) * black / 255);
            pixel[3] = 255;
        }
    }

    std::string_view bytes_;
    jpeg_decompress_struct jpeg_{};
    jpeg_error_mgr errors_{};
    jpeg_progress_mgr progress_{};
    std::jmp_buf escape_{};
};

} // namespace

std::optional<RgbaImage> decodeJpeg(std::string_view bytes) {
    JpegReading reading(bytes);
    if (!reading.readHeader())
        return std::nullopt;
    RgbaImage image(reading.width(), reading.height());
    if (!reading.readPixels(image))
        return std::nullopt;
    return image;
}

} // namespace dubrix
