#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "core/text.h"

#include "fuzz/require.h"

namespace {

/// The length of the first character, found by decoding its value; 0 when it is invalid.
std::size_t characterLength(std::string_view bytes) {
    const auto byteAt = [bytes](std::size_t index) -> std::uint32_t {
        return static_cast<unsigned char>(bytes[index]);
    };
    const std::uint32_t lead = byteAt(0);
    std::size_t length = 1;
    std::uint32_t value = lead;
    std::uint32_t least = 0;
    if (lead >= 0xF0 && lead < 0xF8) {
        length = 4;
        value = lead & 0x07U;
        least = 0x10000;
    } else if (lead >= 0xE0 && lead < 0xF0) {
        length = 3;
        value = lead & 0x0FU;
        least = 0x800;
    } else if (lead >= 0xC0 && lead < 0xE0) {
        length = 2;
        value = lead & 0x1FU;
        least = 0x80;
    } else if (lead >= 0x80) {
        return 0;
    }
    if (length > bytes.size()) {
        return 0;
    }
    for (std::size_t index = 1; index < length; ++index) {
        if ((byteAt(index) & 0xC0U) != 0x80U) {
            return 0;
        }
        value = (value << 6U) | (byteAt(index) & 0x3FU);
    }
    const bool surrogate = value >= 0xD800 && value <= 0xDFFF;
    return value < least || value > 0x10FFFF || surrogate ? 0 : length;
}

bool isValidWhenDecoded(std::string_view bytes) {
    while (!bytes.empty()) {
        const std::size_t length = characterLength(bytes);
        if (length == 0) {
            return false;
        }
        bytes.remove_prefix(length);
    }
    return true;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tallowcrest;
    const std::string bytes(data, data + size);

    const bool valid = isValidUTF8(bytes);
    require(valid == isValidWhenDecoded(bytes));

    const std::string text = replacingInvalidUTF8(bytes);
    require(isValidWhenDecoded(text));
    require((text == bytes) == valid);
    require(text.size() <= bytes.size() * 3);
    require(replacingInvalidUTF8(text) == text);
    return 0;
}
