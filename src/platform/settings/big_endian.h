#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace tallowcrest {

/// The number of 32 bits at `at`, as SQLite's files hold their numbers. There are so many bytes.
inline std::uint32_t bigEndian(std::span<const unsigned char> bytes, std::size_t at) {
    return (std::uint32_t{bytes[at]} << 24U) | (std::uint32_t{bytes[at + 1]} << 16U) |
           (std::uint32_t{bytes[at + 2]} << 8U) | std::uint32_t{bytes[at + 3]};
}

}  // namespace tallowcrest
