#include "device/confine/ProgressBar.h"

#include "files/FileTree.h"

#include <algorithm>
#include <cstdlib>
#include <sys/ioctl.h>
#include <unistd.h>
#include <utility>

namespace dubrix {

namespace {

constexpr unsigned widestBar = 28;
constexpr unsigned narrowestBar = 8;
/// " 100% [" and "]".
constexpr unsigned aroundBar = 8;
constexpr unsigned usualColumns = 80;

bool takesLinesBack(int descriptor) {
    const char* const kind = std::getenv("TERM");
    return ::isatty(descriptor) == 1 && kind && std::string_view(kind) != "dumb";
}

unsigned columnsOf(int descriptor) {
    struct winsize size{};
    const bool known = ::ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0;
    return known ? size.ws_col : usualColumns;
}

bool continuesLetter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xc0) == 0x80;
}

/// Letters from here on, by their first byte (U+1000 and above), may fill two columns.
unsigned columnsOfLetter(char first) {
    return static_cast<unsigned char>(first) >= 0xe1 ? 2 : 1;
}

/// As many whole letters from the beginning as fit.
std::string_view fitting(std::string_view text, unsigned columns) {
    std::size_t end = 0;
    while (end < text.size()) {
        const unsigned wide = columnsOfLetter(text[end]);
        if (wide > columns)
            break;
        columns -= wide;
        for (++end; end < text.size() && continuesLetter(text[end]);)
            ++end;
    }
    return text.substr(0, end);
}

} // namespace

ProgressBar::ProgressBar(int descriptor)
    : descriptor_(descriptor),
      usable_(takesLinesBack(descriptor)) {}

void ProgressBar::start(std::string title, unsigned percent) {
    title_ = std::move(title);
    show(percent, 100);
}

void ProgressBar::show(std::uint64_t done, std::uint64_t total) {
    if (!usable_)
        return;
    const double part = total > 0 ? static_cast<double>(done) / static_cast<double>(total) : 1.0;
    const auto percent = static_cast<unsigned>(100 * std::min(part, 1.0));
    // One column stays free: a letter in the last one makes some terminals go to the next line.
    std::string line = progressLine(title_, percent, columnsOf(descriptor_) - 1);
    if (line != std::exchange(shown_, line))
        writeAll(descriptor_, "\r" + line + "\033[K");
}

void ProgressBar::clear() {
    if (!std::exchange(shown_, {}).empty())
        writeAll(descriptor_, "\r\033[K");
}

std::string progressLine(std::string_view title, unsigned percent, unsigned columns) {
    std::string line = std::to_string(percent) + "%";
    line.insert(0, 4 - std::min<std::size_t>(line.size(), 4), ' ');
    if (columns >= aroundBar + narrowestBar) {
        const unsigned width = std::clamp((columns - aroundBar) / 3, narrowestBar, widestBar);
        const unsigned filled = width * percent / 100;
        line += " [" + std::string(filled, '#') + std::string(width - filled, '.') + "]";
    }
    if (line.size() < columns)
        line += ' ';
    if (line.size() < columns)
        line.append(fitting(title, columns - static_cast<unsigned>(line.size())));
    return line;
}

} // namespace dubrix
