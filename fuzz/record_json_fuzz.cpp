#include <cstddef>
#include <cstdint>
#include <string_view>

#include "core/record_json.h"

namespace {

using namespace tallowcrest;

/// What can be read can be written, and reads back as the same value.
template <class Decode>
void checkRoundTrip(Decode decode, std::string_view text) {
    const auto value = decode(text);
    if (!value) {
        return;
    }
    const auto encoded = record_json::encode(*value);
    if (!encoded || decode(*encoded) != value) {
        __builtin_trap();
    }
}

}  // namespace

/// The first byte picks the decoder.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) {
        return 0;
    }
    const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
    switch (data[0] % 7) {
        case 0:
            checkRoundTrip(record_json::decodeHistory, text);
            break;
        case 1:
            checkRoundTrip(record_json::decodeActivityLog, text);
            break;
        case 2:
            checkRoundTrip(record_json::decodeChatMessages, text);
            break;
        case 3:
            checkRoundTrip(record_json::decodeTrustRecords, text);
            break;
        case 4:
            checkRoundTrip(record_json::decodeRuleDrafts, text);
            break;
        case 5:
            checkRoundTrip(record_json::decodeRemoteProfiles, text);
            break;
        default:
            checkRoundTrip(record_json::decodeRemoteHistory, text);
            break;
    }
    return 0;
}
