#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <fmt/format.h>
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

/// The code of an ASCII character at the beginning of `text`, which follows a backslash there.
std::optional<char> codeOfASCII(std::string_view text) {
    unsigned value = 0x80;
    if (text.starts_with('u') && text.size() >= 5 &&
        std::ranges::all_of(text.substr(1, 4), [](unsigned char c) { return std::isxdigit(c); })) {
        std::from_chars(text.data() + 1, text.data() + 5, value, 16);
    }
    return value < 0x80 ? std::optional(static_cast<char>(value)) : std::nullopt;
}

/// `text` without its backslashes, and with the ASCII characters in place of their codes.
std::string unescaped(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const bool isEscaped = text.front() == '\\';
        text.remove_prefix(std::min(text.find_first_not_of('\\'), text.size()));
        const auto code = isEscaped ? codeOfASCII(text) : std::nullopt;
        result += code ? std::string(1, *code) : std::string(text.substr(0, 1));
        text.remove_prefix(code ? 5 : std::min<std::size_t>(1, text.size()));
    }
    return result;
}

/// `key` with its characters escaped as `choices` says.
std::string escaped(std::string_view key, std::string_view choices) {
    std::string result;
    for (std::size_t i = 0; i < key.size(); ++i) {
        const auto choice = static_cast<unsigned char>(i < choices.size() ? choices[i] : '\0');
        const std::string backslashes((choice >> 1U) % 4U, '\\');
        if ((choice & 1U) != 0) {
            result += fmt::format("\\{}u{:04x}", backslashes, key[i]);
        } else {
            result += (key[i] == 'u' ? "" : backslashes) + key[i];
        }
    }
    return result;
}

/// The beginning of the text is a key, and the rest what a server says.
void checkStrikingOut(const std::string& text) {
    const std::string key = text.substr(0, 10);
    const std::string said = text.substr(key.size());
    if (!isValidUTF8(key)) {
        return;
    }
    const std::string struckOut = strikingOutKey(said, key);
    const auto isASCII = [](char c) { return c >= 0; };
    if (key.size() == 10 && std::ranges::all_of(key, isASCII)) {
        require(struckOut.find(key) == std::string::npos);
        if (key.find('\\') == std::string::npos) {
            require(unescaped(struckOut).find(key) == std::string::npos);
            require(strikingOutKey(escaped(key, said), key) == "\u2022\u2022\u2022");
        }
    }
    require(isValidUTF8(struckOut) || !isValidUTF8(said));
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
