#include "formats/BinaryObjects.h"

#include "formats/PropertyListNode.h"
#include "formats/Unicode.h"

#include <limits>

namespace dubrix {

namespace {

constexpr std::string_view header = "bplist00";
constexpr std::size_t trailerLength = 32;
constexpr char falseMarker = 0x08;

std::uint64_t bigEndian(std::string_view bytes) {
    std::uint64_t number = 0;
    for (char byte : bytes)
        number = number << 8 | static_cast<unsigned char>(byte);
    return number;
}

class Check {
public:
    explicit Check(std::string& bytes) : bytes_(bytes) {}

    bool run() { return readTrailer() && visit(top_, 0) && values_ <= maximumPropertyListValues; }
    std::vector<bool> takeNulls() { return std::move(nulls_); }
    const std::vector<std::size_t>& nullOffsets() const { return nullOffsets_; }

private:
    bool readTrailer() {
        if (bytes_.size() < header.size() + trailerLength || !bytes_.starts_with(header))
            return false;
        const std::size_t end = bytes_.size() - trailerLength;
        const std::string_view trailer = std::string_view(bytes_).substr(end);
        offsetWidth_ = static_cast<unsigned char>(trailer[6]);
        referenceWidth_ = static_cast<unsigned char>(trailer[7]);
        count_ = bigEndian(trailer.substr(8, 8));
        top_ = bigEndian(trailer.substr(16, 8));
        table_ = bigEndian(trailer.substr(24, 8));
        if (offsetWidth_ < 1 || offsetWidth_ > 8 || referenceWidth_ < 1 || referenceWidth_ > 8 ||
            table_ < header.size() || table_ > end || count_ > (end - table_) / offsetWidth_)
            return false;
        isOpen_.resize(count_);
        return true;
    }

    bool visit(std::uint64_t reference, int depth) {
        if (reference >= count_ || ++values_ > maximumPropertyListValues || isOpen_[reference])
            return false;
        const std::uint64_t offset = offsetOf(reference);
        if (offset < header.size() || offset >= table_)
            return false;
        const auto marker = static_cast<unsigned char>(bytes_[offset]);
        position_ = offset + 1;
        const unsigned low = marker & 0x0F;
        switch (marker >> 4) {
        case 0x0:
            return singleton(offset, marker);
        case 0x1:
            return low <= 4 && integer(std::size_t{1} << low);
        case 0x2:
            return (low == 2 || low == 3) && take(std::size_t{1} << low);
        case 0x3:
            return marker == 0x33 && take(8);
        case 0x4:
        case 0x5:
        case 0x6:
            return text(marker);
        case 0x8:
            return (low == 0 || low == 1 || low == 3 || low == 7) && uid(low + 1);
        case 0xA:
        case 0xD:
            return container(reference, marker, depth + 1);
        default:
            return false;
        }
    }

    bool singleton(std::uint64_t offset, unsigned char marker) {
        const bool isNull = marker == 0;
        if (!isNull && marker != 0x08 && marker != 0x09)
            return false;
        if (isNull)
            nullOffsets_.push_back(offset);
        nulls_.push_back(isNull);
        return true;
    }

    /// Sixteen bytes hold the unsigned numbers above INT64_MAX; wider ones have no place here.
    bool integer(std::size_t width) {
        auto bytes = take(width);
        return bytes && (width < 16 || bigEndian(bytes->substr(0, 8)) == 0);
    }

    /// No other form has room for more than 32 bits.
    bool uid(std::size_t width) {
        auto bytes = take(width);
        return bytes && bigEndian(*bytes) <= std::numeric_limits<std::uint32_t>::max();
    }

    bool text(unsigned char marker) {
        const bool isUtf16 = marker >> 4 == 6;
        auto length = objectLength(marker);
        if (!length || *length > bytes_.size())
            return false;
        auto bytes = take(isUtf16 ? *length * 2 : *length);
        if (!bytes || (expandedBytes_ += bytes->size()) > maximumPropertyListBytes)
            return false;
        if (marker >> 4 == 4)
            return true;
        auto utf8 = isUtf16 ? utf8FromUtf16(*bytes, ByteOrder::big) : std::string(*bytes);
        return utf8 && utf8->find('\0') == utf8->npos && (isUtf16 || isUtf8(*utf8));
    }

    bool container(std::uint64_t reference, unsigned char marker, int depth) {
        const bool isDictionary = marker >> 4 == 0xD;
        auto count = objectLength(marker);
        if (!count || *count > bytes_.size() || depth > maximumPropertyListDepth)
            return false;
        auto references = take(*count * referenceWidth_ * (isDictionary ? 2 : 1));
        if (!references)
            return false;
        auto referenceAt = [&, all = *references](std::uint64_t index) {
            return bigEndian(all.substr(index * referenceWidth_, referenceWidth_));
        };
        isOpen_[reference] = true;
        for (std::uint64_t index = 0; index < *count; ++index) {
            if (isDictionary && !key(referenceAt(index)))
                return false;
            if (!visit(referenceAt(isDictionary ? *count + index : index), depth))
                return false;
        }
        isOpen_[reference] = false;
        return true;
    }

    bool key(std::uint64_t reference) {
        if (reference >= count_)
            return false;
        const std::uint64_t offset = offsetOf(reference);
        if (offset < header.size() || offset >= table_)
            return false;
        const auto marker = static_cast<unsigned char>(bytes_[offset]);
        position_ = offset + 1;
        return (marker >> 4 == 5 || marker >> 4 == 6) && text(marker);
    }

    std::uint64_t offsetOf(std::uint64_t reference) const {
        return bigEndian(
            std::string_view(bytes_).substr(table_ + reference * offsetWidth_, offsetWidth_));
    }

    /// The low four bits of the marker, or the integer object that follows it when all are set.
    std::optional<std::uint64_t> objectLength(unsigned char marker) {
        if ((marker & 0x0F) != 0x0F)
            return marker & 0x0F;
        auto widthMarker = take(1);
        if (!widthMarker || (*widthMarker)[0] < 0x10 || (*widthMarker)[0] > 0x13)
            return std::nullopt;
        auto length = take(std::size_t{1} << ((*widthMarker)[0] & 0x0F));
        return length ? std::optional(bigEndian(*length)) : std::nullopt;
    }

    /// The next bytes of the object that is looked at; nothing beyond the object area.
    std::optional<std::string_view> take(std::uint64_t length) {
        if (length > table_ - position_)
            return std::nullopt;
        auto taken = std::string_view(bytes_).substr(position_, length);
        position_ += length;
        return taken;
    }

    const std::string& bytes_;
    std::size_t offsetWidth_ = 0;
    std::size_t referenceWidth_ = 0;
    std::uint64_t count_ = 0;
    std::uint64_t top_ = 0;
    std::uint64_t table_ = 0;
    std::uint64_t position_ = 0;
    std::size_t values_ = 0;
    std::size_t expandedBytes_ = 0;
    std::vector<bool> isOpen_;
    std::vector<bool> nulls_;
    std::vector<std::size_t> nullOffsets_;
};

} // namespace

std::optional<BinaryObjects> checkedBinaryObjects(std::string_view bytes) {
    BinaryObjects objects{std::string(bytes), {}};
    Check check(objects.bytes);
    if (!check.run())
        return std::nullopt;
    objects.nulls = check.takeNulls();
    if (check.nullOffsets().empty())
        return objects;
    for (std::size_t offset : check.nullOffsets())
        objects.bytes[offset] = falseMarker;
    // Overlapping objects may have changed with the null: what is read must be sound as it is now.
    Check again(objects.bytes);
    if (!again.run() || again.takeNulls().size() != objects.nulls.size())
        return std::nullopt;
    return objects;
}

} // namespace dubrix
