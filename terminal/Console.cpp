#include "terminal/Console.h"

#include "files/FileTree.h"
#include "formats/text/PlainText.h"

#include <array>
#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

namespace dubrix {

namespace {

/// A descriptor of this process alone for what `standard` is.
Descriptor takenFrom(int standard) {
    return Descriptor(::fcntl(standard, F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
}

} // namespace

Console::Console(const Ways& ways)
    : ways_(ways),
      input_(takenFrom(STDIN_FILENO)),
      output_(takenFrom(STDOUT_FILENO)),
      errors_(takenFrom(STDERR_FILENO)) {
    const Descriptor nothing(::open("/dev/null", O_RDWR | O_CLOEXEC));
    ::dup2(nothing.get(), STDIN_FILENO);
    ::dup2(ways.isVerbose ? errors_.get() : nothing.get(), STDOUT_FILENO);
    if (!ways.isVerbose)
        ::dup2(nothing.get(), STDERR_FILENO);
}

void Console::say(const std::string& text) {
    writeAll(errors_.get(), text);
}

std::optional<std::string> Console::answer() {
    if (!ways_.isAnswered)
        return std::nullopt;
    std::size_t end = 0;
    while ((end = typed_.find('\n')) == std::string::npos) {
        // The request to end stays to be seen, whenever its signal has come.
        std::array watched{pollfd{input_.get(), POLLIN, 0}, pollfd{ways_.stop, POLLIN, 0}};
        if (::poll(watched.data(), watched.size(), -1) < 0 || watched[1].revents != 0)
            return std::nullopt;
        char bytes[512];
        const ssize_t count = ::read(input_.get(), bytes, sizeof bytes);
        if (count <= 0)
            return std::nullopt;
        typed_.append(bytes, static_cast<std::size_t>(count));
    }
    std::string line = typed_.substr(0, end);
    typed_.erase(0, end + 1);
    return line;
}

void Console::give(const std::string& text) {
    writeAll(output_.get(), text);
}

void Console::tell(const std::string& sentence) {
    if (!ways_.isQuiet)
        complain(sentence);
}

void Console::complain(const std::string& sentence) {
    say(onOneLine(sentence) + "\n");
}

void Console::showWork(const std::string& title, unsigned percent) {
    if (ways_.isQuiet)
        return;
    const bool isNew = title != title_;
    title_ = title;
    if (ways_.drawsProgress)
        give("progress " + std::to_string(percent) + (isNew ? " " + onOneLine(title) : "") + "\n");
    else if (isNew)
        complain(title);
}

} // namespace dubrix
