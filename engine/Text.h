#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>

namespace dubrix {

/// A text that may be absent.
using Text = std::optional<std::string>;

/// One value for a placeholder: a text, a whole number or a real number.
class FormatArgument {
public:
    FormatArgument(const Text& text) : value_(text) {}
    FormatArgument(const std::string& text) : value_(Text(text)) {}
    FormatArgument(const char* text) : value_(Text(text)) {}
    FormatArgument(int number) : value_(number) {}
    FormatArgument(double number) : value_(number) {}

    /// The value as it reads in a text: "(null)" for an absent text, six decimals for a real.
    std::string print() const;

private:
    std::variant<Text, int, double> value_;
};

std::string formatText(std::string_view format, std::span<const FormatArgument> arguments);

/// Fills the placeholders "%@", "%d", "%ld" and "%f" of `format` with the arguments in their order.
/// A placeholder without an argument stays as it is.
template<typename... Arguments>
std::string stringWithFormat(std::string_view format, const Arguments&... arguments) {
    const FormatArgument list[] = {FormatArgument(arguments)...};
    return formatText(format, list);
}

/// The part of a path after its last slash (trailing slashes aside), without its extension.
std::string lastPathComponentWithoutExtension(std::string_view path);

} // namespace dubrix
