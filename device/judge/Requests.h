#pragma once

#include "device/judge/Records.h"

#include <string>
#include <string_view>
#include <vector>

namespace dubrix {

/// What a window asks of the launcher. A refused request has an empty verb and argument.
struct DeskRequest {
    std::string verb{};
    std::string argument{};

    bool operator==(const DeskRequest&) const = default;
};

/// Reads a window's requests, pairs of texts that end in a zero byte, and judges them: the verb is
/// one that this window may say, and its argument has the verb's form: an absolute path for
/// "install", an identifier for "remove", "restore" and "export", nothing for "start".
class RequestReader {
public:
    explicit RequestReader(std::vector<std::string> verbs);

    /// The requests that end in `bytes`, in order.
    std::vector<DeskRequest> read(std::string_view bytes);
    /// How much of an unfinished request is kept; never more than `longest` and a verb.
    std::size_t held() const { return texts_.held() + (verb_ ? verb_->size() : 0); }

    /// The longest path that a system call takes.
    static constexpr std::size_t longest = 4095;

private:
    std::vector<std::string> verbs_;
    RecordReader texts_{'\0', longest};
    /// The verb of a request whose argument has not come; an empty one when it was too long.
    std::optional<std::string> verb_;
};

} // namespace dubrix
