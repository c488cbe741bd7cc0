#pragma once

#include "device/judge/Records.h"

#include <set>
#include <string>
#include <string_view>

namespace dubrix {

/// The names of the pictures that a driver's script asks for, read as the driver reads them.
class ShotNames {
public:
    /// Takes a piece of the script.
    void read(std::string_view script);
    /// The script has ended: its last line counts, too.
    void finish();

    void add(std::string name);
    /// Whether a line that has ended asks for it.
    bool contains(const std::string& name) const { return names_.contains(name); }
    std::size_t held() const { return lines_.held() + bytes_; }

    /// A longer line asks for nothing.
    static constexpr std::size_t longestLine = std::size_t{64} << 10;
    /// Further names are not asked for.
    static constexpr std::size_t mostBytes = std::size_t{4} << 20;

private:
    void takeLine(const RecordReader::Record& line);

    RecordReader lines_{'\n', longestLine};
    std::set<std::string> names_;
    std::size_t bytes_ = 0;
};

} // namespace dubrix
