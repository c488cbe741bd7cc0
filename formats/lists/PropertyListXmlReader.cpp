#include "formats/lists/PropertyListForms.h"
#include "formats/lists/XmlScalars.h"
#include "formats/lists/XmlScanner.h"
#include "formats/text/CodePages.h"
#include "formats/text/Unicode.h"

#include <limits>

namespace dubrix {

namespace {

using Node = PropertyListNode;

bool isUtf8Name(std::string_view encoding) {
    return encoding.empty() || encoding == "utf-8" || encoding == "utf8" || encoding == "us-ascii";
}

/// The text in the encoding that the bytes say they have. An encoding that nobody knows, or in
/// which the bytes cannot be, such as UTF-16 in a declaration of single bytes, is no reason to give
/// up the rest: what is no UTF-8 then becomes U+FFFD.
std::string textAsDeclared(std::string_view bytes) {
    constexpr std::string_view mark = "\xEF\xBB\xBF";
    const std::string encoding = declaredXmlEncoding(bytes);
    if (encoding == "iso-8859-1" || encoding == "latin1")
        return utf8FromLatin1(bytes);
    if (auto text = utf8FromCodePage(bytes, encoding); text && text->starts_with("<?xml"))
        return std::move(*text);
    bytes.remove_prefix(bytes.starts_with(mark) ? mark.size() : 0);
    return isUtf8Name(encoding) || isUtf8(bytes) ? std::string(bytes) : repairedUtf8(bytes);
}

std::optional<std::string> documentText(std::string_view bytes) {
    using namespace std::string_view_literals;
    if (bytes.starts_with("\xFF\xFE\0\0"sv) || bytes.starts_with("\0\0\xFE\xFF"sv))
        return utf8FromCodePage(bytes, "utf-32");
    if (bytes.starts_with("<\0"sv))
        return utf8FromUtf16(bytes, ByteOrder::Little);
    if (bytes.starts_with("\0<"sv))
        return utf8FromUtf16(bytes, ByteOrder::Big);
    if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF"))
        return utf8FromMarkedText(bytes);
    return textAsDeclared(bytes);
}

/// A UID is written as a dictionary in this form.
Node withUid(Node dictionary) {
    const auto& entries = *dictionary.as<Node::Dictionary>();
    if (entries.size() != 1 || entries[0].key != "CF$UID")
        return dictionary;
    const auto* number = entries[0].value.as<std::int64_t>();
    if (!number || *number < 0 || *number > std::numeric_limits<std::uint32_t>::max())
        return dictionary;
    return {Node::Uid{static_cast<std::uint64_t>(*number)}};
}

class Document {
public:
    explicit Document(std::string_view text) : scanner_(text) {}

    std::optional<Node> read() {
        Node value;
        const auto tag = scanner_.skipProlog() ? scanner_.tag() : std::nullopt;
        const bool sound =
            tag && tag->kind != XmlTag::Kind::End &&
            (tag->name == "plist" ? readPlist(*tag, value) : readValue(*tag, 0, value));
        // What comes after is no business of the phone's reader.
        return sound ? std::optional(std::move(value)) : std::nullopt;
    }

private:
    bool readPlist(const XmlTag& plist, Node& out) {
        auto tag = nextTag();
        if (plist.kind != XmlTag::Kind::Start || !tag || !readValue(*tag, 0, out))
            return false;
        auto end = nextTag();
        return end && end->kind == XmlTag::Kind::End && end->name == "plist";
    }

    std::optional<XmlTag> nextTag() {
        return scanner_.skipBetween() ? scanner_.tag() : std::nullopt;
    }

    bool readValue(const XmlTag& tag, int depth, Node& out) {
        if (tag.kind == XmlTag::Kind::End || ++values_ > maximumPropertyListValues)
            return false;
        if (tag.name == "array")
            return depth < maximumPropertyListDepth && readArray(tag, depth + 1, out);
        if (tag.name == "dict")
            return depth < maximumPropertyListDepth && readDictionary(tag, depth + 1, out);
        auto text = elementText(tag);
        return text && readScalar(tag.name, std::move(*text), out);
    }

    static bool readScalar(std::string_view name, std::string text, Node& out) {
        if (name == "string") {
            out.value = std::move(text);
            return true;
        }
        const std::string_view trimmed = trimmedXmlBlanks(text);
        if (name == "true" || name == "false") {
            out.value = name == "true";
            return trimmed.empty();
        }
        if (name == "integer")
            return put(xmlInteger(trimmed), out,
                       [](Node&& number) { return std::move(number.value); });
        if (name == "real")
            return put(xmlReal(trimmed), out, [](double number) { return number; });
        if (name == "date")
            return put(xmlDate(trimmed), out, [](double seconds) { return Node::Date{seconds}; });
        return name == "data" && put(xmlData(text), out, [](std::string&& bytes) {
                   return Node::Data{std::move(bytes)};
               });
    }

    template<class Value, class Wrap>
    static bool put(std::optional<Value> value, Node& out, Wrap wrap) {
        if (value)
            out.value = wrap(std::move(*value));
        return value.has_value();
    }

    bool readArray(const XmlTag& array, int depth, Node& out) {
        auto& values = out.value.emplace<Node::Array>();
        while (array.kind == XmlTag::Kind::Start) {
            const auto tag = nextTag();
            if (!tag || tag->kind == XmlTag::Kind::End)
                return tag && tag->name == array.name;
            if (!readValue(*tag, depth, values.emplace_back()))
                return false;
        }
        return true;
    }

    bool readDictionary(const XmlTag& dictionary, int depth, Node& out) {
        PropertyListDictionaryBuilder entries;
        while (dictionary.kind == XmlTag::Kind::Start) {
            auto tag = nextTag();
            if (tag && tag->kind == XmlTag::Kind::End && tag->name == dictionary.name)
                break;
            if (!tag || tag->kind == XmlTag::Kind::End || tag->name != "key")
                return false;
            auto key = elementText(*tag);
            tag = key ? nextTag() : std::nullopt;
            if (!tag || !readValue(*tag, depth, entries.put(std::move(*key))))
                return false;
        }
        out = withUid(entries.take());
        return true;
    }

    std::optional<std::string> elementText(const XmlTag& tag) {
        if (tag.kind == XmlTag::Kind::Empty)
            return std::string();
        auto text = scanner_.textUntilEnd(tag.name);
        return text && isUtf8(*text) ? std::move(text) : std::nullopt;
    }

    XmlScanner scanner_;
    std::size_t values_ = 0;
};

} // namespace

std::optional<PropertyListNode> readXmlPropertyList(std::string_view bytes) {
    const auto text = documentText(bytes);
    return text ? Document(*text).read() : std::nullopt;
}

} // namespace dubrix
