#include "fuzzers/lists/Lists.h"

#include <algorithm>
#include <utility>

namespace dubrix::fuzz {

namespace {

constexpr std::size_t trailerLength = 32;

std::uint64_t bigEndian(std::string_view bytes) {
    std::uint64_t number = 0;
    for (char byte : bytes)
        number = number << 8 | static_cast<unsigned char>(byte);
    return number;
}

std::string bigEndian(std::uint64_t number, std::size_t width) {
    std::string bytes(width, '\0');
    for (std::size_t index = width; index-- > 0; number >>= 8)
        bytes[index] = static_cast<char>(number & 0xFF);
    return bytes;
}

/// The objects of a file, cut where the next one begins, to be laid out anew after a change.
struct Layout {
    std::vector<std::string> objects;
    std::size_t referenceWidth = 1;
    std::uint64_t top = 0;

    static Layout of(std::string_view bytes) {
        Layout layout;
        if (!bytes.starts_with("bplist00") || bytes.size() < trailerLength)
            return layout;
        const std::uint64_t end = bytes.size() - trailerLength;
        const auto number = [&bytes](std::uint64_t at, std::size_t width) {
            return bigEndian(bytes.substr(at, width));
        };
        const std::size_t width = number(end + 6, 1);
        const std::uint64_t table = number(end + 24, 8);
        layout.referenceWidth = number(end + 7, 1);
        layout.top = number(end + 16, 8);
        if (width == 0 || width > 8 || table > end)
            return layout;
        std::vector<std::uint64_t> offsets;
        for (std::uint64_t at = table; at + width <= end; at += width)
            offsets.push_back(std::min(number(at, width), table));
        std::vector<std::uint64_t> ends = offsets;
        ends.push_back(table);
        std::sort(ends.begin(), ends.end());
        for (const std::uint64_t offset : offsets)
            layout.objects.emplace_back(bytes.substr(
                offset, *std::upper_bound(ends.begin(), ends.end() - 1, offset) - offset));
        return layout;
    }

    std::string bytes() const {
        std::string bytes = "bplist00";
        std::string table;
        for (const std::string& object : objects) {
            table += bigEndian(bytes.size(), 4);
            bytes += object;
        }
        const std::size_t start = bytes.size();
        return bytes + table + std::string(6, '\0') + bigEndian(4, 1) +
               bigEndian(referenceWidth, 1) + bigEndian(objects.size(), 8) + bigEndian(top, 8) +
               bigEndian(start, 8);
    }
};

/// Objects that no writer of ours makes: odd widths, sets, counts in wide numbers.
const std::vector<std::string>& oddObjects() {
    using namespace std::string_view_literals;
    static const std::vector<std::string> all =
        wordsOf("\x00|\x09|\x0f|\x10\xff|\x11\x80\x00|\x83\x80\1\2\3|\x87\0\0\0\1\0\0\0\0|\x80\xff|"
                "\x23\x7f\xf8\0\0\0\0\0\1|\x22\x7f\xc0\0\0|\x62\xd8\x3c\xdf\x3f|\x62\0a\xd8\0|"
                "\x53\xc3\xa9x|"
                "\xc1\0|\x5f\x10\2ab|\x4f\x13\0\0\0\0\0\0\0\1x|\xa1\0|\xd1\0\0|"
                "\x14\0\0\0\0\0\0\0\0\x80\0\0\0\0\0\0\0|"
                "\x14\xff\xff\xff\xff\xff\xff\xff\xff\xff\xff\xff\xff\xff\xff\xff\xff"sv);
    return all;
}

void change(Layout& layout, Random& random) {
    std::string& object = anyOf(layout.objects, random);
    switch (below(5, random)) {
    case 0:
        object = anyOf(oddObjects(), random);
        break;
    case 1:
        object = withChangedBytes(object, random);
        break;
    case 2: // any reference to any object: shared, cyclic or of the wrong type
        if (object.size() > 1)
            object[1 + below(object.size() - 1, random)] =
                static_cast<char>(below(layout.objects.size() + 1, random));
        break;
    default:
        layout.objects.push_back(std::exchange(object, anyOf(oddObjects(), random)));
    }
}

} // namespace

void tryInput(std::string_view bytes) {
    requireSound(bytes, readBinaryPropertyList(bytes));
}

std::vector<std::string> seeds() {
    std::vector<std::string> all;
    for (const std::string& object : oddObjects())
        all.push_back(Layout{{object, "\x51k", "\x08"}, 1, 0}.bytes());
    for (const PropertyListNode& tree : sampleTrees())
        all.push_back(writeBinaryPropertyList(tree));
    return all;
}

const std::vector<std::string>& vocabulary() {
    return oddObjects();
}

std::string restructured(const std::string& bytes, Random& random) {
    if (once(2, random)) {
        if (auto tree = readBinaryPropertyList(bytes)) {
            changeTree(*tree, random);
            return writeBinaryPropertyList(*tree);
        }
    }
    Layout layout = Layout::of(bytes);
    if (layout.objects.empty())
        return withChangedBytes(bytes, random);
    for (std::size_t changes = 1 + below(3, random); changes > 0; --changes)
        change(layout, random);
    return layout.bytes();
}

} // namespace dubrix::fuzz
