#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
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

/// Writes all of `bytes`; false, with errno, when that is not possible.
bool writeAll(int descriptor, std::string_view bytes);

/// The same at `offset` of an open file.
bool writeAllAt(int file, std::string_view bytes, std::uint64_t offset);

/// Reads `size` bytes at `offset` of an open file; false when there are not as many.
bool readExactly(int file, std::uint64_t offset, char* bytes, std::size_t size);

/// Whether two descriptors lead to one file; false when either leads nowhere.
bool isSameFile(int one, int other);

} // namespace dubrix
