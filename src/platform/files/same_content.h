#pragma once

#include <cstdint>
#include <functional>
#include <stop_token>

namespace tallowcrest {

/// What a comparison of two files ends with.
enum class Comparison { same, different, stopped, failed };

/// Compares the first `size` bytes of two open files, byte by byte; holes of both are not read.
/// `failed` comes with `errno`: 0 when a file ends before. `report` gets the bytes compared so far,
/// after each of them. Any thread.
Comparison compareContents(int file, int other, std::int64_t size,
                           const std::function<void(std::int64_t)>& report,
                           const std::stop_token& stop);

}  // namespace tallowcrest
