#include "formats/PlainXml.h"

#include "formats/PropertyListNode.h"
#include "formats/Unicode.h"
#include "formats/XmlScanner.h"

namespace dubrix {

namespace {

std::optional<std::string> documentText(std::string_view bytes) {
    using namespace std::string_view_literals;
    if (bytes.starts_with("<\0"sv))
        return utf8FromUtf16(bytes, ByteOrder::little);
    if (bytes.starts_with("\0<"sv))
        return utf8FromUtf16(bytes, ByteOrder::big);
    if (bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF"))
        return utf8FromMarkedText(bytes);
    std::string encoding = declaredXmlEncoding(bytes);
    if (encoding == "iso-8859-1" || encoding == "latin1")
        return utf8FromLatin1(bytes);
    if (encoding.empty() || encoding == "utf-8" || encoding == "utf8" || encoding == "us-ascii")
        return utf8FromMarkedText(bytes);
    return std::nullopt;
}

class Document {
public:
    explicit Document(std::string_view text) : scanner_(text) {}

    bool read() {
        auto tag = scanner_.skipProlog() ? scanner_.tag() : std::nullopt;
        if (!tag || tag->kind == XmlTag::Kind::end)
            return false;
        plain_ = "<plist version=\"1.0\">";
        if (tag->name == "plist") {
            if (!readPlist(*tag))
                return false;
        } else if (!readValue(*tag, 0)) {
            return false;
        }
        plain_ += "</plist>";
        return scanner_.skipBetween() && scanner_.atEnd();
    }

    std::string take() { return std::move(plain_); }

private:
    bool readPlist(const XmlTag& plist) {
        auto tag = nextTag();
        if (plist.kind != XmlTag::Kind::start || !tag || !readValue(*tag, 0))
            return false;
        auto end = nextTag();
        return end && end->kind == XmlTag::Kind::end && end->name == "plist";
    }

    std::optional<XmlTag> nextTag() {
        return scanner_.skipBetween() ? scanner_.tag() : std::nullopt;
    }

    bool readValue(const XmlTag& tag, int depth) {
        if (tag.kind == XmlTag::Kind::end || ++values_ > maximumPropertyListValues)
            return false;
        if (tag.name == "array" || tag.name == "dict")
            return depth < maximumPropertyListDepth && readContainer(tag, depth + 1);
        auto text = elementText(tag);
        if (!text)
            return false;
        if (tag.name == "true" || tag.name == "false") {
            if (!trimmedXmlBlanks(*text).empty())
                return false;
            plain_.append("<").append(tag.name) += "/>";
            return true;
        }
        return put(tag.name, scalarText(tag.name, *text));
    }

    static std::optional<std::string> scalarText(std::string_view name, const std::string& text) {
        if (name == "string")
            return escapedXml(text);
        if (name == "data")
            return plainBase64(text);
        if (name == "integer")
            return plainInteger(trimmedXmlBlanks(text));
        if (name == "real")
            return plainReal(trimmedXmlBlanks(text));
        if (name == "date")
            return plainDate(trimmedXmlBlanks(text));
        return std::nullopt;
    }

    bool put(std::string_view name, const std::optional<std::string>& content) {
        if (content)
            plain_.append("<").append(name).append(">").append(*content).append("</").append(
                name) += ">";
        return content.has_value();
    }

    bool readContainer(const XmlTag& container, int depth) {
        const bool isDictionary = container.name == "dict";
        plain_.append("<").append(container.name) += ">";
        while (container.kind == XmlTag::Kind::start) {
            auto tag = nextTag();
            if (!tag)
                return false;
            if (tag->kind == XmlTag::Kind::end) {
                if (tag->name != container.name)
                    return false;
                break;
            }
            if (isDictionary) {
                auto key = tag->name == "key" ? elementText(*tag) : std::nullopt;
                tag = key && put("key", escapedXml(*key)) ? nextTag() : std::nullopt;
            }
            if (!tag || !readValue(*tag, depth))
                return false;
        }
        plain_.append("</").append(container.name) += ">";
        return true;
    }

    std::optional<std::string> elementText(const XmlTag& tag) {
        return tag.kind == XmlTag::Kind::empty ? std::string() : scanner_.textUntilEnd(tag.name);
    }

    XmlScanner scanner_;
    std::string plain_;
    std::size_t values_ = 0;
};

} // namespace

std::optional<std::string> plainXml(std::string_view bytes) {
    auto text = documentText(bytes);
    if (!text)
        return std::nullopt;
    Document document(*text);
    if (!document.read())
        return std::nullopt;
    return document.take();
}

} // namespace dubrix
