#pragma once

#include <unistd.h>

#include <utility>

namespace tallowcrest {

/// Owns one file descriptor and closes it at the end. Leaves `errno` alone when it closes.
class UniqueFD {
public:
    UniqueFD() = default;
    /// Takes over `descriptor`; a negative one means none.
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

    /// -1 when there is none, which `poll` skips.
    int get() const { return descriptor_; }
    bool valid() const { return descriptor_ >= 0; }

    void reset();

private:
    int descriptor_ = -1;
};

}  // namespace tallowcrest
