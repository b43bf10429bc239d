#include "core/base64.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace tallowcrest {

std::optional<std::string> decodedBase64(std::string_view text) {
    constexpr std::string_view alphabet =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    constexpr unsigned bitsPerDigit = 6;
    constexpr unsigned bitsPerByte = 8;
    constexpr std::size_t digitsPerGroup = 4;
    const std::size_t digits = std::min(text.find('='), text.size());
    const std::size_t padding = text.size() - digits;
    if (text.size() % digitsPerGroup != 0 || padding > 2 ||
        text.substr(digits) != std::string_view("==").substr(0, padding)) {
        return std::nullopt;
    }
    std::string bytes;
    std::uint32_t pending = 0;
    unsigned pendingBits = 0;
    for (const char digit : text.substr(0, digits)) {
        const std::size_t value = alphabet.find(digit);
        if (value == std::string_view::npos) {
            return std::nullopt;
        }
        pending = pending << bitsPerDigit | static_cast<std::uint32_t>(value);
        pendingBits += bitsPerDigit;
        if (pendingBits >= bitsPerByte) {
            pendingBits -= bitsPerByte;
            bytes += static_cast<char>(pending >> pendingBits);
            pending &= (1U << pendingBits) - 1;
        }
    }
    return pending == 0 ? std::optional(bytes) : std::nullopt;
}

}  // namespace tallowcrest
