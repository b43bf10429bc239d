#include "advisor/provider_exchange.h"

#include "advisor/advisor_ports.h"
#include "advisor/advisor_prompts.h"

namespace tallowcrest {
namespace {

constexpr std::string_view defaultModel = "gpt-5.6-luna";

ProviderResult post(const ProviderAccess& access, std::string_view prompt, Verbosity verbosity,
                    const std::stop_token& stop) {
    if (!access.endpoint) {
        return AIError{"OpenAI endpoint URL is invalid."};
    }
    const Endpoint& endpoint = *access.endpoint;
    const auto body =
        requestBody(access.model.empty() ? defaultModel : access.model, prompt, verbosity);
    if (!body) {
        return AIError{"Could not prepare " + endpoint.service + " request."};
    }
    const auto reply = access.http->post({.url = endpoint.url,
                                          .bearerToken = access.key,
                                          .body = *body,
                                          .wait = exchangeWait,
                                          .timeout = requestTimeout},
                                         stop);
    return reply ? interpretProviderReply(*reply, endpoint.service)
                 : AIError{endpoint.service + " request did not complete."};
}

}  // namespace

ProviderResult postAnalysisRequest(const ProviderAccess& access, std::string_view report,
                                   const std::stop_token& stop) {
    return post(access, analysisPrompt(report), Verbosity::low, stop);
}

ProviderResult postChatRequest(const ProviderAccess& access,
                               std::span<const AIChatMessage> recentChat, std::string_view question,
                               std::string_view report, const std::stop_token& stop) {
    return post(access, chatPrompt(recentChat, question, report), Verbosity::medium, stop);
}

}  // namespace tallowcrest
