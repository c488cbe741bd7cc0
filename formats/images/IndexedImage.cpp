#include "formats/images/IndexedImage.h"

#include <bit>
#include <cstring>

namespace dubrix {

namespace {

/// Numbers different values in the order in which they first occur. An open-addressed hash table:
/// it is asked for nearly every pixel.
class ValueNumbering {
public:
    static constexpr unsigned capacity = 256;

    /// The number of `value`, `capacity` when it is a new one too many.
    unsigned numberOf(std::uint32_t value) {
        std::size_t slot = value * 0x9e3779b1U >> (32 - slotBits); // Knuth's multiplicative hash
        while (slots_[slot].isTaken && slots_[slot].value != value)
            slot = (slot + 1) % slots_.size();
        if (!slots_[slot].isTaken) {
            if (values_.size() == capacity)
                return capacity;
            slots_[slot] = {value, static_cast<std::uint8_t>(values_.size()), true};
            values_.push_back(value);
        }
        return slots_[slot].number;
    }

    const std::vector<std::uint32_t>& values() const { return values_; }

private:
    static constexpr unsigned slotBits = 11; // an eighth full at most, so chains stay short

    struct Slot {
        std::uint32_t value = 0;
        std::uint8_t number = 0;
        bool isTaken = false;
    };

    std::array<Slot, std::size_t{1} << slotBits> slots_{};
    std::vector<std::uint32_t> values_;
};

std::uint32_t pixelValue(const std::uint8_t* pixel) {
    std::uint32_t value = 0;
    std::memcpy(&value, pixel, sizeof value);
    return value;
}

} // namespace

std::optional<IndexedImage> indexedImage(const RgbaImage& image) {
    const std::size_t count = image.pixelCount();
    const std::uint8_t* pixel = image.bytes.get();
    IndexedImage indexed{{}, std::make_unique_for_overwrite<std::uint8_t[]>(count)};
    ValueNumbering numbering;
    std::uint32_t last = pixelValue(pixel);
    unsigned number = numbering.numberOf(last);
    for (std::size_t index = 0; index < count; ++index, pixel += RgbaImage::pixelSize) {
        const std::uint32_t value = pixelValue(pixel);
        if (value != last) {
            number = numbering.numberOf(value);
            if (number == ValueNumbering::capacity)
                return std::nullopt;
            last = value;
        }
        indexed.indices[index] = static_cast<std::uint8_t>(number);
    }
    for (const std::uint32_t value : numbering.values())
        indexed.palette.push_back(std::bit_cast<std::array<std::uint8_t, 4>>(value));
    return indexed;
}

} // namespace dubrix
