#include "device/judge/Requests.h"

#include "device/registry/Registry.h"

#include <algorithm>

namespace dubrix {

namespace {

bool fits(std::string_view verb, std::string_view argument) {
    if (verb == "install")
        return argument.starts_with('/');
    if (verb == "remove" || verb == "restore" || verb == "export")
        return Registry::mayBeRegistered(argument);
    return verb == "start" && argument.empty();
}

DeskRequest judged(std::string verb, std::optional<std::string> argument) {
    if (!argument || !fits(verb, *argument))
        return {};
    return {std::move(verb), std::move(*argument)};
}

} // namespace

RequestReader::RequestReader(std::vector<std::string> verbs) : verbs_(std::move(verbs)) {}

std::vector<DeskRequest> RequestReader::read(std::string_view bytes) {
    std::vector<DeskRequest> requests;
    while (auto text = texts_.take(bytes)) {
        if (verb_) {
            requests.push_back(judged(std::move(*verb_), std::move(text->bytes)));
            verb_.reset();
        } else {
            verb_ = std::move(text->bytes).value_or("");
            if (std::ranges::find(verbs_, *verb_) == verbs_.end())
                verb_.emplace();
        }
    }
    return requests;
}

} // namespace dubrix
