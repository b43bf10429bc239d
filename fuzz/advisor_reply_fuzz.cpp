#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "advisor/action_catalogue.h"
#include "advisor/advisor_output.h"
#include "advisor/endpoint.h"
#include "advisor/provider_reply.h"
#include "core/text.h"
#include "tests/support/self_acting_advisor.h"

#include "fuzz/require.h"

namespace tallowcrest {
namespace {

void checkOutput(const std::string& text) {
    const AdvisorOutput output = parseAdvisorOutput(text);
    require(output.suggestions.size() <= maximumSuggestions);
    for (const AIActionSuggestion& suggestion : output.suggestions) {
        require(suggestion.type != "none");
        require(trimmingWhiteSpace(suggestion.type) == suggestion.type);
        require(loweredASCII(suggestion.type) == suggestion.type);
        require(loweredASCII(suggestion.risk) == suggestion.risk);
    }
}

/// Whether `url` names this machine, whatever follows the host.
bool isToThisMachine(std::string_view url) {
    for (const std::string_view host : {"http://localhost", "http://[::1]"}) {
        if (url.starts_with(host)) {
            return url[host.size()] == ':' || url[host.size()] == '/';
        }
    }
    constexpr std::string_view scheme = "http://";
    const std::string_view rest = url.substr(scheme.size());
    return rest.starts_with("127.") &&
           rest.find_first_not_of("0123456789.") == rest.find_first_of(":/");
}

void checkEndpoint(std::string_view address) {
    const auto endpoint = endpointFrom(address);
    if (!endpoint) {
        return;
    }
    const std::string& url = endpoint->url;
    require(url.starts_with("https://") || isToThisMachine(url));
    require(url.ends_with("/v1/responses"));
    for (const char c : url) {
        require(c > ' ' && c < '\x7F' && c != '\\' && c != '?' && c != '#');
    }
    require(endpoint->service.find('@') == std::string::npos);
    const auto again = endpointFrom(url);
    require(again ? again->url == url : url.size() > maximumEndpointLength);
}

}  // namespace
}  // namespace tallowcrest

/// The first byte chooses the mode, the switch for safe actions, and whether the rest is the body
/// of the reply or the text in it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tallowcrest;
    if (size == 0) {
        return 0;
    }
    const std::string text(data + 1, data + size);
    checkOutput(text);
    checkEndpoint(text);
    const std::uint8_t choice = data[0];
    const bool isBody = (choice & 1U) != 0 || !isValidUTF8(text);
    const std::string body = isBody ? text : nlohmann::json{{"output_text", text}}.dump();
    const std::optional<std::string> extracted = extractResponseText(body);
    require(isBody || extracted == text);
    require(!extracted || isValidUTF8(*extracted));

    SelfActingAdvisor machine(allAIAutonomyModes.at((choice >> 2U) % allAIAutonomyModes.size()),
                              (choice & 2U) != 0);
    machine.analyze({200, body, {}});
    require(!brokenRule(machine));
    return 0;
}
