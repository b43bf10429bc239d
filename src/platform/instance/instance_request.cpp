#include "platform/instance/instance_request.h"

#include <algorithm>

namespace tallowcrest {
namespace {

// One line: the verb, followed by a space and the token if there is one.
constexpr std::string_view verb = "show";
constexpr std::size_t longestToken = longestInstanceRequest - verb.size() - 2;

bool isPrintable(char c) {
    return c >= 0x20 && c < 0x7F;
}

bool isSendable(std::string_view token) {
    return !token.empty() && token.size() <= longestToken &&
           std::all_of(token.begin(), token.end(), isPrintable);
}

}  // namespace

std::string instanceRequestText(const InstanceRequest& request) {
    std::string text(verb);
    if (isSendable(request.activationToken)) {
        text += ' ' + request.activationToken;
    }
    return text + '\n';
}

std::variant<InstanceRequest, IncompleteRequest, MalformedRequest> parseInstanceRequest(
    std::string_view received) {
    const std::size_t lineEnd = received.find('\n');
    const std::string_view line = received.substr(0, lineEnd);
    if (line.substr(0, verb.size()) != verb.substr(0, line.size())) {
        return MalformedRequest{};
    }
    const std::string_view rest = line.substr(std::min(verb.size(), line.size()));
    const std::string_view token = rest.substr(rest.empty() ? 0 : 1);
    if ((!rest.empty() && rest.front() != ' ') || token.size() > longestToken ||
        !std::all_of(token.begin(), token.end(), isPrintable)) {
        return MalformedRequest{};
    }
    if (lineEnd == std::string_view::npos) {
        return IncompleteRequest{};
    }
    const bool isComplete = line.size() >= verb.size() && (rest.empty() || !token.empty());
    if (!isComplete || lineEnd + 1 != received.size()) {
        return MalformedRequest{};
    }
    return InstanceRequest{std::string(token)};
}

}  // namespace tallowcrest
