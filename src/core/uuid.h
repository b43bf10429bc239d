#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tallowcrest {

/// A 128-bit identifier. A default-constructed one is all zeros.
struct UUID {
    std::array<std::uint8_t, 16> bytes{};

    /// A fresh random identifier (version 4). Any thread.
    static UUID random();

    /// Accepts the canonical 8-4-4-4-12 form in either case; absent for anything else.
    static std::optional<UUID> fromText(std::string_view text);

    /// The canonical form in upper case.
    std::string text() const;

    auto operator<=>(const UUID&) const = default;
};

}  // namespace tallowcrest
