#pragma once

#include "device/judge/Records.h"
#include "device/judge/ShotNames.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace dubrix {

/// Where pictures go.
class PictureWriter {
public:
    virtual ~PictureWriter() = default;

    /// A picture of this name begins; an empty text, or why it cannot be written.
    virtual std::string begin(const std::string& name) = 0;
    virtual void write(std::string_view bytes) = 0;
    /// All of it has come; an empty text, or what went wrong.
    virtual std::string end() = 0;
};

/// Reads the pictures that a window sends (driver/ShotPipe.h says in which form) and has those
/// written that the script asks for. All bytes of a refused one are taken, so that the next is read
/// where it begins.
class PictureReader {
public:
    PictureReader(const ShotNames& names, PictureWriter& writer) : names_(names), writer_(writer) {}

    /// The answers to the pictures that end in `bytes`, in order: "ok", or what is wrong with one.
    std::vector<std::string> read(std::string_view bytes);
    std::size_t held() const { return lines_.held() + name_.size(); }

    static constexpr std::size_t longestName = 4095;
    static constexpr std::uint64_t largest = std::uint64_t{512} << 20;

private:
    enum class Part { Name, Size, Bytes, Nothing };

    void takeName(std::optional<std::string> name);
    void takeSize(const std::optional<std::string>& text);
    void takeBytes(std::string_view& bytes);
    void answer();

    const ShotNames& names_;
    PictureWriter& writer_;
    RecordReader lines_{'\n', longestName};
    Part part_ = Part::Name;
    std::string name_;
    std::string problem_;
    std::uint64_t left_ = 0;
    std::vector<std::string> answers_;
};

} // namespace dubrix
