#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "advisor/action_catalogue.h"
#include "advisor/advisor_output.h"
#include "advisor/endpoint.h"
#include "advisor/openai_key.h"
#include "advisor/provider_reply.h"
#include "core/text.h"
#include "tests/support/self_acting_advisor.h"

#include "fuzz/require.h"

namespace tallowcrest {
namespace {

bool hasAtMost(const std::string& text, std::size_t characters) {
    return firstCharacters(text, characters) == text;
}

void checkOutput(const std::string& text) {
    const AdvisorOutput output = parseAdvisorOutput(text);
    require(output.suggestions.size() <= maximumSuggestions);
    require(hasAtMost(output.summary, maximumAnswerCharacters));
    for (const AIActionSuggestion& suggestion : output.suggestions) {
        require(suggestion.type != "none");
        // A type that was cut can end in a blank.
        const bool isCut = firstCharacters(suggestion.type, maximumTypeCharacters - 1).size() <
                           suggestion.type.size();
        require(isCut || trimmingWhiteSpace(suggestion.type) == suggestion.type);
        require(hasAtMost(suggestion.type, maximumTypeCharacters));
        require(hasAtMost(suggestion.title, maximumTitleCharacters));
        require(hasAtMost(suggestion.detail, maximumDetailCharacters));
        require(hasAtMost(suggestion.risk, maximumRiskCharacters));
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
    for (std::size_t at = url.find('%'); at != std::string::npos; at = url.find('%', at + 1)) {
        require(url.find_first_not_of("0123456789ABCDEFabcdef", at + 1) > at + 2);
    }
    require(endpoint->service.find('@') == std::string::npos);
    const auto again = endpointFrom(url);
    require(again ? again->url == url : url.size() > maximumEndpointLength);
}

/// The beginning of the text is a key, and the rest what a server says.
void checkStrikingOut(const std::string& text) {
    const std::string key = text.substr(0, 10);
    const std::string said = text.substr(key.size());
    const std::string struckOut = strikingOutKey(said, key);
    const auto isASCII = [](char c) { return c >= 0; };
    if (key.size() == 10 && std::ranges::all_of(key, isASCII)) {
        require(struckOut.find(key) == std::string::npos);
    }
    require(isValidUTF8(struckOut) || !isValidUTF8(said) || !isValidUTF8(key));
}

}  // namespace
}  // namespace tallowcrest

/// The first byte chooses the mode, the switch for safe actions, the status of the reply, and
/// whether the rest is its body or the text in it.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace tallowcrest;
    if (size == 0) {
        return 0;
    }
    const std::string text(data + 1, data + size);
    checkOutput(text);
    checkEndpoint(text);
    checkStrikingOut(text);
    const std::uint8_t choice = data[0];
    const bool isBody = (choice & 1U) != 0 || !isValidUTF8(text);
    const std::string body = isBody ? text : nlohmann::json{{"output_text", text}}.dump();
    const std::optional<std::string> extracted = extractResponseText(body);
    require(isBody || extracted == text);
    require(!extracted || isValidUTF8(*extracted));

    const auto mode = allAIAutonomyModes.at((choice >> 2U & 7U) % allAIAutonomyModes.size());
    constexpr std::array statuses{200, 200, 200, 200, 299, 401, 500, 0};
    const HttpReply reply{statuses.at(choice >> 5U), WipedText(body), {}};
    SelfActingAdvisor machine(mode, (choice & 2U) != 0);
    machine.analyze(reply);
    require(!brokenRule(machine));
    SelfActingAdvisor asked(mode, true);
    asked.ask(reply);
    require(!brokenChatRule(asked));
    return 0;
}
