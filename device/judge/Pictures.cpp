#include "device/judge/Pictures.h"

#include <algorithm>
#include <charconv>
#include <utility>

namespace dubrix {

namespace {

std::optional<std::uint64_t> numberIn(std::string_view digits) {
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (digits.empty() || error != std::errc() || end != digits.data() + digits.size())
        return std::nullopt;
    return number;
}

} // namespace

std::vector<std::string> PictureReader::read(std::string_view bytes) {
    while (!bytes.empty()) {
        if (part_ == Part::Nothing) {
            break;
        } else if (part_ == Part::Bytes) {
            takeBytes(bytes);
        } else if (auto line = lines_.take(bytes)) {
            if (part_ == Part::Name)
                takeName(std::move(line->bytes));
            else
                takeSize(line->bytes);
        }
    }
    return std::exchange(answers_, {});
}

void PictureReader::takeName(std::optional<std::string> name) {
    problem_.clear();
    if (!name)
        problem_ = "a file's name is too long";
    name_ = std::move(name).value_or("");
    if (problem_.empty() && !names_.contains(name_))
        problem_ = name_ + ": the script does not ask for it";
    part_ = Part::Size;
}

void PictureReader::takeSize(const std::optional<std::string>& text) {
    const std::optional<std::uint64_t> size = text ? numberIn(*text) : std::nullopt;
    if (!size) {
        // Where the next one begins is anybody's guess.
        answers_.emplace_back("a picture's size is not a number");
        part_ = Part::Nothing;
        return;
    }
    if (problem_.empty() && *size > largest)
        problem_ = name_ + ": larger than 512 MiB";
    if (problem_.empty())
        if (const std::string reason = writer_.begin(name_); !reason.empty())
            problem_ = name_ + ": " + reason;
    left_ = *size;
    part_ = Part::Bytes;
    if (left_ == 0)
        answer();
}

void PictureReader::takeBytes(std::string_view& bytes) {
    const std::string_view piece =
        bytes.substr(0, static_cast<std::size_t>(std::min<std::uint64_t>(left_, bytes.size())));
    if (problem_.empty())
        writer_.write(piece);
    left_ -= piece.size();
    bytes.remove_prefix(piece.size());
    if (left_ == 0)
        answer();
}

void PictureReader::answer() {
    if (problem_.empty())
        if (const std::string reason = writer_.end(); !reason.empty())
            problem_ = name_ + ": " + reason;
    answers_.push_back(problem_.empty() ? "ok" : problem_);
    name_.clear();
    part_ = Part::Name;
}

} // namespace dubrix
