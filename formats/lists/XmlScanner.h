#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace dubrix {

struct XmlTag {
    enum class Kind { Start, End, Empty };
    std::string_view name;
    Kind kind;
};

/// Walks the markup of one XML document held as UTF-8 without byte order mark, which is taken as
/// it is: bytes that are no UTF-8 count as characters. Every operation fails at markup that is not
/// well formed or stops before its end; a failed scanner is not used on.
class XmlScanner {
public:
    explicit XmlScanner(std::string_view text) : rest_(text) {}

    /// Passes the declaration, the document type (nothing it declares is used), comments,
    /// instructions and blanks before the root element.
    bool skipProlog();
    /// Passes comments, instructions and blanks.
    bool skipBetween();

    /// The tag that stands here. Attributes are checked for form and dropped.
    std::optional<XmlTag> tag();

    /// The text from here to the end tag of `name`, which is passed: references and CDATA sections
    /// resolved, comments left out. Nothing when an element, another end tag, an unknown reference
    /// or a zero character comes in between.
    std::optional<std::string> textUntilEnd(std::string_view name);

private:
    bool skip(std::string_view mark);
    bool skipThrough(std::string_view mark);
    void skipBlanks();
    bool skipDocumentType();
    bool skipAttributes();
    std::string_view name();
    bool appendReference(std::string& text);

    std::string_view rest_;
};

/// The encoding that the declaration at the start of `bytes` names, in lower case; empty if none.
std::string declaredXmlEncoding(std::string_view bytes);

/// `text` with "&", "<" and ">" as references, and carriage returns, which a strict reader would
/// take for line breaks.
std::string escapedXml(std::string_view text);

std::string_view trimmedXmlBlanks(std::string_view text);

} // namespace dubrix
