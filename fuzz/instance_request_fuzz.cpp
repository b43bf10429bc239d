#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <variant>

#include "platform/instance/instance_request.h"

#include "fuzz/require.h"

using tallowcrest::IncompleteRequest;
using tallowcrest::InstanceRequest;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string received(data, data + size);
    const auto parsed = tallowcrest::parseInstanceRequest(received);
    if (const auto* request = std::get_if<InstanceRequest>(&parsed)) {
        // The text is exactly the one that a start sends.
        require(tallowcrest::instanceRequestText(*request) == received);
        require(size <= tallowcrest::longestInstanceRequest);
    } else if (std::holds_alternative<IncompleteRequest>(parsed)) {
        // The sender can still complete it, within the limit.
        require(size < tallowcrest::longestInstanceRequest);
        const auto completed = size < 4 ? std::string("show").substr(size) + '\n' : "t\n";
        const bool wantsBlank = size == 4;
        require(std::holds_alternative<InstanceRequest>(tallowcrest::parseInstanceRequest(
                    received + (wantsBlank ? "\n" : completed))) ||
                size == tallowcrest::longestInstanceRequest - 1);
    }
    // A token can be any text.
    const auto sent = tallowcrest::parseInstanceRequest(
        tallowcrest::instanceRequestText(InstanceRequest{received}));
    require(std::holds_alternative<InstanceRequest>(sent));
    return 0;
}
