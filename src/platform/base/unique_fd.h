#pragma once

#include <unistd.h>

#include <cerrno>
#include <utility>

namespace tallowcrest {

/// Owns one file descriptor. Closing it preserves `errno`.
class UniqueFD {
public:
    UniqueFD() = default;
    /// Takes ownership of `descriptor`; negative means none.
    explicit UniqueFD(int descriptor) : descriptor_(descriptor) {}
    UniqueFD(UniqueFD&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
    UniqueFD& operator=(UniqueFD&& other) noexcept {
        if (this != &other) {
            reset();
            descriptor_ = std::exchange(other.descriptor_, -1);
        }
        return *this;
    }
    ~UniqueFD() { reset(); }

    /// -1 when there is none; `poll` ignores that value.
    int get() const { return descriptor_; }
    bool valid() const { return descriptor_ >= 0; }

    void reset() {
        if (descriptor_ < 0) {
            return;
        }
        const int savedError = errno;
        // Not retried after EINTR: the descriptor is closed by then, and another thread may already
        // have got the same number.
        ::close(std::exchange(descriptor_, -1));
        errno = savedError;
    }

private:
    int descriptor_ = -1;
};

}  // namespace tallowcrest
