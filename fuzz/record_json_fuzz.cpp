#include <cstddef>
#include <cstdint>
#include <string_view>

#include "core/record_json.h"

#include "fuzz/require.h"

/// Built as one program for each decoder.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tallowcrest;
    const auto decode = record_json::TALLOWCREST_FUZZED_DECODER;
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    // A value that was read can be written and read back as the same value.
    if (const auto value = decode(text)) {
        const auto encoded = record_json::encode(*value);
        require(encoded.has_value());
        require(decode(*encoded) == value);
    }
    return 0;
}
