#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace dubrix {

/// Cuts what comes in pieces into records, each of which ends in a certain byte. Nothing is kept of
/// a record that is too long, so whoever never ends one fills no memory.
class RecordReader {
public:
    RecordReader(char terminator, std::size_t longest) : end_(terminator), longest_(longest) {}

    /// Takes a piece off the front of `bytes`, up to the end of the record that is being read.
    /// Gives the record when that end was there: its bytes, or nothing in place of what was too
    /// long. All of `bytes` are taken and nothing is given when it was not.
    struct Record {
        std::optional<std::string> bytes;
    };
    std::optional<Record> take(std::string_view& bytes) {
        const std::size_t end = bytes.find(end_);
        const std::string_view piece = bytes.substr(0, end);
        tooLong_ = tooLong_ || piece.size() > longest_ - held_.size();
        if (tooLong_)
            held_ = {};
        else
            held_ += piece;
        if (end == std::string_view::npos) {
            bytes = {};
            return std::nullopt;
        }
        bytes.remove_prefix(end + 1);
        return finish();
    }
    /// Ends the record that is being read, as its end would.
    Record finish() {
        Record record{std::exchange(tooLong_, false) ? std::nullopt
                                                     : std::optional(std::move(held_))};
        held_.clear();
        return record;
    }
    /// How much of an unfinished record is kept.
    std::size_t held() const { return held_.size(); }

private:
    char end_;
    std::size_t longest_;
    std::string held_;
    bool tooLong_ = false;
};

} // namespace dubrix
