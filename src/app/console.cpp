#include "app/console.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include <fmt/format.h>

#include "core/utf8.h"

namespace tallowcrest {
namespace {

/// The length of the valid UTF-8 sequence that `lead` begins.
std::size_t sequenceLength(unsigned char lead) {
    return lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
}

/// The code point of a valid sequence.
char32_t codePoint(std::string_view sequence) {
    const auto lead = static_cast<unsigned char>(sequence[0]);
    if (sequence.size() == 1) {
        return lead;
    }
    char32_t value = lead & (0xFFU >> (sequence.size() + 1));
    for (const char c : sequence.substr(1)) {
        value = (value << 6U) | (static_cast<unsigned char>(c) & 0x3FU);
    }
    return value;
}

/// Control characters of both ranges, and the marks that turn the direction of a whole line.
bool isControl(char32_t c) {
    const bool turnsDirection = c == 0x061C || c == 0x200E || c == 0x200F ||
                                (c >= 0x202A && c <= 0x202E) || (c >= 0x2066 && c <= 0x2069);
    return c < 0x20 || (c >= 0x7F && c < 0xA0) || turnsDirection;
}

}  // namespace

PrintableText printableText(std::string_view text, std::size_t limit) {
    const std::string valid = replacingInvalidUTF8(text);
    std::string_view rest = valid;
    PrintableText result;
    while (!rest.empty() && result.characters < limit) {
        const std::size_t length = sequenceLength(static_cast<unsigned char>(rest[0]));
        const std::string_view sequence = rest.substr(0, length);
        result.text.append(isControl(codePoint(sequence)) ? "?" : sequence);
        ++result.characters;
        rest.remove_prefix(length);
    }
    return result;
}

bool writeToStandardOutput(std::string_view text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) == text.size() &&
        std::fflush(stdout) == 0) {
        return true;
    }
    complain(fmt::format("standard output: {}", std::strerror(errno)));
    return false;
}

void complain(std::string_view message) {
    const std::string line = fmt::format("tallowcrest: {}\n", message);
    std::fwrite(line.data(), 1, line.size(), stderr);
}

}  // namespace tallowcrest
