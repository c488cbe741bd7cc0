#include "engine/Text.h"

namespace dubrix {

std::string FormatArgument::print() const {
    if (const auto* text = std::get_if<Text>(&value_))
        return text->value_or("(null)");
    if (const auto* number = std::get_if<int>(&value_))
        return std::to_string(*number);
    return std::to_string(std::get<double>(value_));
}

std::string formatText(std::string_view format, std::span<const FormatArgument> arguments) {
    std::string text;
    std::size_t next = 0;
    while (!format.empty()) {
        std::string_view placeholder;
        for (const std::string_view known : {"%@", "%d", "%ld", "%f"})
            if (format.starts_with(known))
                placeholder = known;
        if (placeholder.empty() || next == arguments.size()) {
            text += format.front();
            format.remove_prefix(1);
        } else {
            text += arguments[next++].print();
            format.remove_prefix(placeholder.size());
        }
    }
    return text;
}

std::string lastPathComponentWithoutExtension(std::string_view path) {
    while (path.ends_with('/'))
        path.remove_suffix(1);
    const std::string_view name = path.substr(path.rfind('/') + 1);
    const std::size_t dot = name.rfind('.');
    return std::string(dot == std::string_view::npos || dot == 0 ? name : name.substr(0, dot));
}

} // namespace dubrix
