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

/// Whether a valid sequence is a control character: of the first range, delete, or, as two bytes,
/// of the second range.
bool isControl(std::string_view sequence) {
    const auto lead = static_cast<unsigned char>(sequence[0]);
    if (lead == 0xC2) {
        return static_cast<unsigned char>(sequence[1]) < 0xA0;
    }
    return lead < 0x20 || lead == 0x7F;
}

}  // namespace

PrintableText printableText(std::string_view text, std::size_t limit) {
    const std::string valid = replacingInvalidUTF8(text);
    std::string_view rest = valid;
    PrintableText result;
    while (!rest.empty() && result.characters < limit) {
        const std::size_t length = sequenceLength(static_cast<unsigned char>(rest[0]));
        const std::string_view sequence = rest.substr(0, length);
        result.text.append(isControl(sequence) ? "?" : sequence);
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
