#include "core/uuid.h"

#include <random>

namespace tallowcrest {
namespace {

constexpr bool isHyphenPosition(std::size_t index) {
    return index == 8 || index == 13 || index == 18 || index == 23;
}

std::optional<std::uint8_t> hexDigit(char c) {
    if (c >= '0' && c <= '9') {
        return static_cast<std::uint8_t>(c - '0');
    }
    if (c >= 'a' && c <= 'f') {
        return static_cast<std::uint8_t>(c - 'a' + 10);
    }
    if (c >= 'A' && c <= 'F') {
        return static_cast<std::uint8_t>(c - 'A' + 10);
    }
    return std::nullopt;
}

}  // namespace

UUID UUID::random() {
    // Seeding the 2.5 KB state for each identifier would cost far more than generating it.
    thread_local std::mt19937_64 generator = [] {
        std::random_device device;
        std::seed_seq seed{device(), device(), device(), device(),
                           device(), device(), device(), device()};
        return std::mt19937_64(seed);
    }();
    UUID result;
    for (std::size_t half = 0; half < 2; ++half) {
        const std::uint64_t word = generator();
        for (std::size_t i = 0; i < 8; ++i) {
            result.bytes[half * 8 + i] = static_cast<std::uint8_t>(word >> (8 * i));
        }
    }
    result.bytes[6] = static_cast<std::uint8_t>((result.bytes[6] & 0x0F) | 0x40);
    result.bytes[8] = static_cast<std::uint8_t>((result.bytes[8] & 0x3F) | 0x80);
    return result;
}

std::optional<UUID> UUID::fromText(std::string_view text) {
    constexpr std::size_t canonicalLength = 36;
    if (text.size() != canonicalLength) {
        return std::nullopt;
    }
    UUID result;
    std::size_t nibble = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (isHyphenPosition(i)) {
            if (text[i] != '-') {
                return std::nullopt;
            }
            continue;
        }
        const auto digit = hexDigit(text[i]);
        if (!digit) {
            return std::nullopt;
        }
        std::uint8_t& byte = result.bytes[nibble / 2];
        byte = static_cast<std::uint8_t>((byte << 4) | *digit);
        ++nibble;
    }
    return result;
}

std::string UUID::text() const {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string result;
    result.reserve(36);
    for (const std::uint8_t byte : bytes) {
        if (isHyphenPosition(result.size())) {
            result.push_back('-');
        }
        result.push_back(digits[byte >> 4]);
        result.push_back(digits[byte & 0x0F]);
    }
    return result;
}

}  // namespace tallowcrest
