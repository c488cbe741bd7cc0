#pragma once

#include <unistd.h>
#include <utility>

namespace dubrix {

/// Owns one file descriptor; a negative number means none.
class Descriptor {
public:
    Descriptor() = default;
    explicit Descriptor(int number) : number_(number) {}
    ~Descriptor() { close(); }
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }

    int get() const { return number_; }
    bool isOpen() const { return number_ >= 0; }
    /// Gives the descriptor away to an owner of another kind.
    int release() { return std::exchange(number_, -1); }
    /// False when the system reports a write that failed late.
    bool close() {
        const int number = release();
        return number < 0 || ::close(number) == 0;
    }

private:
    int number_ = -1;
};

} // namespace dubrix
