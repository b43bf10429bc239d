#include "advisor/provider_exchange.h"

#include <algorithm>
#include <utility>
#include <variant>

#include "advisor/advisor_ports.h"
#include "advisor/advisor_prompts.h"

namespace tallowcrest {
namespace {

constexpr std::string_view defaultModel = "gpt-5.6-luna";

std::string& textOf(ProviderResult& result) {
    auto* const error = std::get_if<AIError>(&result);
    return error != nullptr ? error->message : std::get<std::string>(result);
}

ProviderResult resultOf(HttpReply reply, std::string_view service, std::string_view key) {
    // Here, so that the beginning of a long text does not end within the key.
    if (reply.data) {
        *reply.data = strikingOutKey(*reply.data, key);
    }
    if (reply.transportError) {
        *reply.transportError = strikingOutKey(*reply.transportError, key);
    }
    ProviderResult result = interpretProviderReply(reply, service);
    // And here, where the text is no longer escaped.
    std::string& text = textOf(result);
    std::string struckOut = strikingOutKey(text, key);
    wipe(text);
    text = std::move(struckOut);
    return result;
}

std::optional<ProviderResult> post(const ProviderAccess& access, std::string_view prompt,
                                   Verbosity verbosity, const std::stop_token& stop) {
    if (!access.endpoint) {
        return AIError{"OpenAI endpoint URL is invalid."};
    }
    const Endpoint& endpoint = *access.endpoint;
    const auto body =
        requestBody(access.model.empty() ? defaultModel : access.model, prompt, verbosity);
    if (!body) {
        return AIError{"Could not prepare " + endpoint.service + " request."};
    }
    const SecretText noKey;
    const SecretText* const stored = access.key ? access.key->ifStillStored() : nullptr;
    const SecretText& key = stored != nullptr ? *stored : noKey;
    if (key.isEmpty() && endpoint.needsKey) {
        return std::nullopt;
    }
    auto reply = access.http->post({.url = endpoint.url,
                                    .bearerToken = key,
                                    .body = *body,
                                    .wait = exchangeWait,
                                    .timeout = requestTimeout},
                                   stop);
    return reply ? resultOf(*std::move(reply), endpoint.service, key.view())
                 : AIError{endpoint.service + " request did not complete."};
}

}  // namespace

double secondsWaited(Date since, Date now) {
    return std::max(0.0, secondsBetween(since, now));
}

std::optional<ProviderResult> postAnalysisRequest(const ProviderAccess& access,
                                                  std::string_view report,
                                                  const std::stop_token& stop) {
    return post(access, analysisPrompt(report), Verbosity::low, stop);
}

std::optional<ProviderResult> postChatRequest(const ProviderAccess& access,
                                              std::span<const AIChatMessage> recentChat,
                                              std::string_view question, std::string_view report,
                                              const std::stop_token& stop) {
    auto result = post(access, chatPrompt(recentChat, question, report), Verbosity::medium, stop);
    if (auto* const answer = result ? std::get_if<std::string>(&*result) : nullptr) {
        *answer = boundedAnswer(std::move(*answer));
    }
    return result;
}

}  // namespace tallowcrest
