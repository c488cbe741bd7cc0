#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace dubrix {

/// A line on a terminal that fills as work goes on:
///
///      43% [############................] 2 of 5: Fernleaf.ipa
///
/// It is drawn again only when it would look different, keeps within the terminal's width at that
/// moment and leaves nothing behind when it is taken away.
class ProgressBar {
public:
    /// `descriptor` stays the caller's. Nothing is ever drawn where it is no terminal, or one that
    /// cannot take a line back (TERM is "dumb" or missing).
    explicit ProgressBar(int descriptor);
    ~ProgressBar() { clear(); }
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    /// Begins with new work, of which `percent` is done. `title` is UTF-8 without control
    /// characters.
    void start(std::string title, unsigned percent = 0);
    /// `done` of `total`; of nothing, all is done.
    void show(std::uint64_t done, std::uint64_t total);
    /// Takes the line away, so that others can be printed.
    void clear();

private:
    int descriptor_;
    bool usable_;
    std::string title_;
    std::string shown_;
};

/// The line as it looks at `percent` (0 to 100), at most `columns` (4 or more) wide. Letters that
/// may be wide count as two columns.
std::string progressLine(std::string_view title, unsigned percent, unsigned columns);

} // namespace dubrix
