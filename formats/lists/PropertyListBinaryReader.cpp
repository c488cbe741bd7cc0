#include "formats/lists/PropertyListForms.h"
#include "formats/text/Unicode.h"

#include <bit>
#include <limits>

namespace dubrix {

namespace {

using Node = PropertyListNode;

constexpr std::string_view header = "bplist00";
constexpr std::size_t trailerLength = 32;

std::uint64_t bigEndian(std::string_view bytes) {
    std::uint64_t number = 0;
    for (char byte : bytes)
        number = number << 8 | static_cast<unsigned char>(byte);
    return number;
}

class BinaryReader {
public:
    explicit BinaryReader(std::string_view bytes) : bytes_(bytes) {}

    std::optional<Node> read() {
        Node top;
        return readTrailer() && value(top_, 0, top) ? std::optional(std::move(top)) : std::nullopt;
    }

private:
    bool readTrailer() {
        if (bytes_.size() < header.size() + trailerLength || !bytes_.starts_with(header))
            return false;
        const std::size_t end = bytes_.size() - trailerLength;
        const std::string_view trailer = bytes_.substr(end);
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

    bool value(std::uint64_t reference, int depth, Node& out) {
        if (++values_ > maximumPropertyListValues || !goTo(reference) || isOpen_[reference])
            return false;
        const unsigned low = marker_ & 0x0F;
        switch (marker_ >> 4) {
        case 0x0:
            return singleton(out);
        case 0x1:
            return low <= 4 && integer(std::size_t{1} << low, out);
        case 0x2:
            return real(low, out);
        case 0x3:
            return marker_ == 0x33 && date(out);
        case 0x4:
            return data(out);
        case 0x5:
        case 0x6:
            return text(out.value.emplace<std::string>());
        case 0x8:
            return (low == 0 || low == 1 || low == 3 || low == 7) && uid(low + 1, out);
        case 0xA:
        case 0xD:
            return container(reference, depth + 1, out);
        default:
            return false;
        }
    }

    /// Reads the marker of an object; what belongs to it is taken next.
    bool goTo(std::uint64_t reference) {
        if (reference >= count_)
            return false;
        const std::uint64_t offset =
            bigEndian(bytes_.substr(table_ + reference * offsetWidth_, offsetWidth_));
        if (offset < header.size() || offset >= table_)
            return false;
        marker_ = static_cast<unsigned char>(bytes_[offset]);
        position_ = offset + 1;
        return true;
    }

    bool singleton(Node& out) const {
        if (marker_ == 0)
            out.value = Node::Null{};
        else if (marker_ == 0x08 || marker_ == 0x09)
            out.value = marker_ == 0x09;
        else
            return false;
        return true;
    }

    /// Eight bytes hold a signed number, fewer an unsigned one. Sixteen hold the unsigned numbers
    /// above INT64_MAX; wider ones have no place here.
    bool integer(std::size_t width, Node& out) {
        const auto bytes = take(width);
        if (!bytes || (width == 16 && bigEndian(bytes->substr(0, 8)) != 0))
            return false;
        const std::uint64_t number = bigEndian(width == 16 ? bytes->substr(8) : *bytes);
        if (width == 16 && number > std::numeric_limits<std::int64_t>::max())
            out.value = number;
        else
            out.value = static_cast<std::int64_t>(number);
        return true;
    }

    bool real(unsigned low, Node& out) {
        const auto bytes = low == 2 || low == 3 ? take(std::size_t{1} << low) : std::nullopt;
        if (!bytes)
            return false;
        const std::uint64_t bits = bigEndian(*bytes);
        out.value = low == 2 ? std::bit_cast<float>(static_cast<std::uint32_t>(bits))
                             : std::bit_cast<double>(bits);
        return true;
    }

    bool date(Node& out) {
        const auto bytes = take(8);
        if (bytes)
            out.value = Node::Date{std::bit_cast<double>(bigEndian(*bytes))};
        return bytes.has_value();
    }

    /// No other form has room for more than 32 bits.
    bool uid(std::size_t width, Node& out) {
        const auto bytes = take(width);
        if (!bytes || bigEndian(*bytes) > std::numeric_limits<std::uint32_t>::max())
            return false;
        out.value = Node::Uid{bigEndian(*bytes)};
        return true;
    }

    bool data(Node& out) {
        const auto bytes = takeCounted(1);
        if (bytes)
            out.value = Node::Data{std::string(*bytes)};
        return bytes.has_value();
    }

    bool text(std::string& out) {
        if (marker_ >> 4 == 6) {
            const auto units = takeCounted(2);
            auto utf8 = units ? utf8FromUtf16(*units, ByteOrder::Big) : std::nullopt;
            if (!utf8)
                return false;
            out = std::move(*utf8);
        } else {
            const auto bytes = takeCounted(1);
            if (!bytes || !isUtf8(*bytes))
                return false;
            out = *bytes;
        }
        return out.find('\0') == out.npos;
    }

    bool container(std::uint64_t reference, int depth, Node& out) {
        const bool isDictionary = marker_ >> 4 == 0xD;
        const auto count = objectLength();
        if (!count || *count > bytes_.size() || depth > maximumPropertyListDepth)
            return false;
        const auto references = take(*count * referenceWidth_ * (isDictionary ? 2 : 1));
        if (!references)
            return false;
        isOpen_[reference] = true;
        const bool sound = isDictionary ? dictionary(*references, *count, depth, out)
                                        : array(*references, *count, depth, out);
        isOpen_[reference] = false;
        return sound;
    }

    bool array(std::string_view references, std::uint64_t count, int depth, Node& out) {
        auto& values = out.value.emplace<Node::Array>();
        for (std::uint64_t index = 0; index < count; ++index)
            if (!value(referenceAt(references, index), depth, values.emplace_back()))
                return false;
        return true;
    }

    bool dictionary(std::string_view references, std::uint64_t count, int depth, Node& out) {
        PropertyListDictionaryBuilder entries;
        for (std::uint64_t index = 0; index < count; ++index) {
            std::string key;
            if (!goTo(referenceAt(references, index)) || (marker_ >> 4 != 5 && marker_ >> 4 != 6) ||
                !text(key) ||
                !value(referenceAt(references, count + index), depth, entries.put(std::move(key))))
                return false;
        }
        out = entries.take();
        return true;
    }

    std::uint64_t referenceAt(std::string_view references, std::uint64_t index) const {
        return bigEndian(references.substr(index * referenceWidth_, referenceWidth_));
    }

    /// The low four bits of the marker, or the integer object that follows it when all are set.
    std::optional<std::uint64_t> objectLength() {
        if ((marker_ & 0x0F) != 0x0F)
            return marker_ & 0x0F;
        const auto widthMarker = take(1);
        if (!widthMarker || (*widthMarker)[0] < 0x10 || (*widthMarker)[0] > 0x13)
            return std::nullopt;
        const auto length = take(std::size_t{1} << ((*widthMarker)[0] & 0x0F));
        return length ? std::optional(bigEndian(*length)) : std::nullopt;
    }

    /// The content of a text or of data in units of so many bytes.
    std::optional<std::string_view> takeCounted(std::size_t unit) {
        const auto length = objectLength();
        if (!length || *length > bytes_.size())
            return std::nullopt;
        const auto bytes = take(*length * unit);
        if (!bytes)
            return std::nullopt;
        expandedBytes_ += bytes->size();
        return expandedBytes_ <= maximumPropertyListBytes ? bytes : std::nullopt;
    }

    /// The next bytes of the object that is looked at; nothing beyond the object area.
    std::optional<std::string_view> take(std::uint64_t length) {
        if (length > table_ - position_)
            return std::nullopt;
        const auto taken = bytes_.substr(position_, length);
        position_ += length;
        return taken;
    }

    std::string_view bytes_;
    std::size_t offsetWidth_ = 0;
    std::size_t referenceWidth_ = 0;
    std::uint64_t count_ = 0;
    std::uint64_t top_ = 0;
    std::uint64_t table_ = 0;
    unsigned char marker_ = 0;
    std::uint64_t position_ = 0;
    std::size_t values_ = 0;
    std::size_t expandedBytes_ = 0;
    /// The containers that the one looked at lies in.
    std::vector<bool> isOpen_;
};

} // namespace

std::optional<PropertyListNode> readBinaryPropertyList(std::string_view bytes) {
    return BinaryReader(bytes).read();
}

} // namespace dubrix
