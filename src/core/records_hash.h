#pragma once

#include <concepts>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

#include "core/date.h"
#include "core/uuid.h"

namespace tallowcrest {

/// A value record lists its fields once, in order. Its hash is derived from that list.
template <class T>
concept Record = requires(const T& record) {
    record.fields();
};

namespace detail {

inline void mix(std::size_t& seed, std::size_t value) {
    seed ^= value + 0x9E3779B97F4A7C15ULL + (seed << 6) + (seed >> 2);
}

template <class T>
std::size_t hashField(const T& value);

template <class T>
std::size_t hashField(const std::vector<T>& values) {
    std::size_t seed = values.size();
    for (const T& value : values) {
        mix(seed, hashField(value));
    }
    return seed;
}

template <class T>
std::size_t hashField(const std::optional<T>& value) {
    return value ? hashField(*value) + 1 : 0;
}

template <class T>
std::size_t hashField(const T& value) {
    if constexpr (Record<T>) {
        std::size_t seed = 0;
        std::apply([&seed](const auto&... field) { (mix(seed, hashField(field)), ...); },
                   value.fields());
        return seed;
    } else if constexpr (std::is_floating_point_v<T>) {
        // Equal values need equal hashes: adding +0.0 turns -0.0 into +0.0.
        return std::hash<T>{}(value + T{0});
    } else if constexpr (std::same_as<T, Date>) {
        return hashField(value.secondsSinceReference);
    } else if constexpr (std::same_as<T, UUID>) {
        std::size_t seed = 0;
        for (const auto byte : value.bytes) {
            mix(seed, byte);
        }
        return seed;
    } else {
        return std::hash<T>{}(value);
    }
}

}  // namespace detail
}  // namespace tallowcrest

template <tallowcrest::Record T>
struct std::hash<T> {
    std::size_t operator()(const T& record) const { return tallowcrest::detail::hashField(record); }
};

template <>
struct std::hash<tallowcrest::UUID> {
    std::size_t operator()(const tallowcrest::UUID& value) const {
        return tallowcrest::detail::hashField(value);
    }
};

template <>
struct std::hash<tallowcrest::Date> {
    std::size_t operator()(const tallowcrest::Date& value) const {
        return tallowcrest::detail::hashField(value);
    }
};
