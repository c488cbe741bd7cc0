#pragma once

#include <cerrno>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <unistd.h>

namespace dubrix {

/// What waits to be written to a descriptor whose reader may be slow.
class Outflow {
public:
    explicit Outflow(int descriptor) : descriptor_(descriptor) {
        ::fcntl(descriptor, F_SETFL, O_NONBLOCK);
    }

    void add(std::string_view bytes) {
        if (isOpen_)
            waiting_ += bytes;
    }
    bool isEmpty() const { return written_ == waiting_.size(); }
    /// Nobody reads any more: what waits is dropped, and so is all that comes.
    bool isOpen() const { return isOpen_; }
    /// For poll; none while nothing waits.
    int descriptor() const { return isEmpty() ? -1 : descriptor_; }

    /// Writes as much as is taken now.
    void flow() {
        const ssize_t written =
            ::write(descriptor_, waiting_.data() + written_, waiting_.size() - written_);
        if (written >= 0)
            written_ += static_cast<std::size_t>(written);
        else if (errno != EAGAIN && errno != EINTR)
            isOpen_ = false;
        if (isEmpty() || !isOpen_)
            drop();
    }
    /// Tells the reader of the end.
    void close() {
        ::close(descriptor_);
        isOpen_ = false;
        drop();
    }

private:
    void drop() {
        waiting_.clear();
        written_ = 0;
    }

    int descriptor_;
    std::string waiting_;
    std::size_t written_ = 0;
    bool isOpen_ = true;
};

/// One piece of what a descriptor gives; empty at its end, and when it cannot be read.
inline std::string readPiece(int descriptor) {
    constexpr std::size_t size = std::size_t{64} << 10;
    std::string bytes(size, '\0');
    ssize_t got = 0;
    do
        got = ::read(descriptor, bytes.data(), bytes.size());
    while (got < 0 && errno == EINTR);
    bytes.resize(got > 0 ? static_cast<std::size_t>(got) : 0);
    return bytes;
}

} // namespace dubrix
