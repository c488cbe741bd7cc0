#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace dubrix {

/// A value as JSON (RFC 8259) spells it.
class Json {
public:
    static Json text(std::string_view utf8);
    static Json number(int value) { return Json(std::to_string(value)); }
    static Json boolean(bool value) { return Json(value ? "true" : "false"); }
    static Json none() { return Json("null"); }
    static Json array(const std::vector<Json>& values);
    static Json object(std::initializer_list<std::pair<std::string_view, Json>> members);

    const std::string& spelled() const { return spelled_; }

private:
    explicit Json(std::string spelled) : spelled_(std::move(spelled)) {}

    std::string spelled_;
};

} // namespace dubrix
