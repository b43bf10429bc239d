#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#include "platform/settings/settings_row.h"

namespace {

using namespace tallowcrest;

constexpr std::array<std::string_view, 9> kinds{"flag", "number", "text", "list",   "table",
                                                "json", "data",   "",     "unknown"};

/// A column of the type that `choice` picks, made of `bytes`.
RowValue columnOf(unsigned choice, std::string_view bytes) {
    std::array<char, 8> eight{};
    std::memcpy(eight.data(), bytes.data(), bytes.size() < 8 ? bytes.size() : 8);
    std::int64_t integer = 0;
    double number = 0;
    std::memcpy(&integer, eight.data(), 8);
    std::memcpy(&number, eight.data(), 8);
    switch (choice) {
        case 0:
            return {};
        case 1:
            return integer;
        case 2:
            return number;
        case 3:
            return bytes;
        default:
            return RowBytes{bytes};
    }
}

bool isNotANumber(const SettingsValue& value) {
    const auto* number = std::get_if<double>(&value);
    return number != nullptr && std::isnan(*number);
}

}  // namespace

/// The first byte picks kind and column type. Whatever can be read can be stored, and reads back as
/// the same value.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
    const auto value =
        valueOf({kinds[data[0] % kinds.size()],
                 columnOf(static_cast<unsigned>(data[0] / kinds.size()) % 5, bytes)});
    if (!value) {
        return 0;
    }
    std::string buffer;
    const auto row = rowFor(*value, buffer);
    if (!row) {
        __builtin_trap();
    }
    const auto again = valueOf(*row);
    if (!again || (*again != *value && !(isNotANumber(*again) && isNotANumber(*value)))) {
        __builtin_trap();
    }
    return 0;
}
