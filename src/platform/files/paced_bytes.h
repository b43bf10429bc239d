#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>

namespace tallowcrest {

/// How many bytes to work on at once so that it takes at most about `longest`, on a volume of any
/// speed. Begins with the least, of which it always is a multiple, and at most doubles from one
/// time to the next.
class PacedBytes {
public:
    PacedBytes(std::int64_t least, std::int64_t most, std::chrono::nanoseconds longest)
        : least_(least), most_(most), longest_(longest), bytes_(least) {}

    std::int64_t bytes() const { return bytes_; }

    /// How long the work on some bytes has taken. Fewer than `bytes` do not tell that more can be
    /// done.
    void took(std::int64_t bytes, std::chrono::nanoseconds time) {
        if (time > longest_) {
            const double rate = static_cast<double>(bytes) / static_cast<double>(time.count());
            const auto parts = static_cast<std::int64_t>(
                rate * static_cast<double>(longest_.count()) / static_cast<double>(least_));
            bytes_ = std::clamp(parts * least_, least_, bytes_);
        } else if (bytes >= bytes_ && time <= longest_ / 2) {
            bytes_ = std::min(most_, 2 * bytes_);
        }
    }

private:
    std::int64_t least_;
    std::int64_t most_;
    std::chrono::nanoseconds longest_;
    std::int64_t bytes_;
};

}  // namespace tallowcrest
