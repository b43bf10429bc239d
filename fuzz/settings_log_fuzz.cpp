#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/settings/settings_log.h"

#include "fuzz/require.h"

using namespace tallowcrest;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // A copy of just that size, so that a look beyond its end is seen.
    const std::vector<unsigned char> bytes(data, data + size);
    const bool isSound = settings_log::isSound(bytes);
    constexpr std::size_t headerSize = 32;
    if (size < headerSize) {
        require(isSound == bytes.empty());
        return 0;
    }
    if (isSound) {
        // A sound log has a sound header, which is one without any record.
        require(settings_log::isSound(std::span(bytes).first(headerSize)));
        for (std::size_t at = 0; at < headerSize; ++at) {
            auto damaged = bytes;
            damaged[at] ^= 0x10U;
            require(!settings_log::isSound(damaged));
        }
    }
    return 0;
}
