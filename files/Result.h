#pragma once

#include <cerrno>
#include <string>
#include <system_error>
#include <utility>
#include <variant>

namespace dubrix {

/// Why an operation failed, as one line for the user without a final stop.
struct Failure {
    std::string text;
    /// Whether what was given is no archive of an application at all, not even a damaged one.
    bool isOfAnotherKind = false;
};

/// The failure of a system call, with the reason of `error` (an errno value) in words.
inline Failure systemFailure(const std::string& what, int error = errno) {
    if (error == ENOSPC || error == EDQUOT)
        return Failure{what + ": not enough room on the device"};
    return Failure{what + ": " + std::generic_category().message(error)};
}

/// A value, or the failure that kept it from being there.
template<class Value>
class [[nodiscard]] Result {
public:
    Result(Value value) : content_(std::move(value)) {}
    Result(Failure failure) : content_(std::move(failure)) {}

    explicit operator bool() const { return content_.index() == 0; }
    /// Only after a success.
    Value& operator*() { return std::get<0>(content_); }
    const Value& operator*() const { return std::get<0>(content_); }
    Value* operator->() { return &std::get<0>(content_); }
    /// Only after a failure.
    const Failure& failure() const { return std::get<1>(content_); }

private:
    std::variant<Value, Failure> content_;
};

struct Success {};
using Outcome = Result<Success>;

} // namespace dubrix
