#include "terminal/Json.h"

#include "formats/text/PlainText.h"
#include "formats/text/Unicode.h"

#include <array>
#include <cstdio>

namespace dubrix {

Json Json::text(std::string_view utf8) {
    std::string spelled = "\"";
    const std::string text = repairedUtf8(utf8);
    for (std::size_t index = 0; index < text.size();) {
        const std::size_t start = index;
        const char32_t symbol = takeScalar(text, index).value_or(0);
        // None of them lies beyond the sixteen bits that an escape has.
        if (actsOnLine(symbol)) {
            std::array<char, 8> escaped{};
            std::snprintf(escaped.data(), escaped.size(), "\\u%04x", static_cast<unsigned>(symbol));
            spelled += escaped.data();
            continue;
        }
        if (symbol == '"' || symbol == '\\')
            spelled += '\\';
        spelled.append(text, start, index - start);
    }
    return Json(spelled + "\"");
}

Json Json::array(const std::vector<Json>& values) {
    std::string spelled = "[";
    for (const Json& value : values)
        spelled += (&value == &values.front() ? "" : ",") + value.spelled_;
    return Json(spelled + "]");
}

Json Json::object(std::initializer_list<std::pair<std::string_view, Json>> members) {
    std::string spelled = "{";
    for (const auto& [key, value] : members) {
        spelled += spelled.size() > 1 ? "," : "";
        spelled += text(key).spelled_ + ":" + value.spelled_;
    }
    return Json(spelled + "}");
}

} // namespace dubrix
