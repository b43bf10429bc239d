#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <string_view>

#include "advisor/endpoint.h"
#include "advisor/provider_reply.h"
#include "core/advisor_records.h"
#include "core/secret_text.h"

namespace tallowcrest {

class HttpExchange;

/// How long an answer is waited for, and after how long the request itself ends.
inline constexpr std::chrono::seconds exchangeWait{30};
inline constexpr std::chrono::seconds requestTimeout{60};

/// What a request needs beside its text.
struct ProviderAccess {
    std::shared_ptr<HttpExchange> http;  ///< never null
    std::optional<Endpoint> endpoint;    ///< absent when the stored address must not be used
    SecretText key;
    std::string model;  ///< empty for the default
};

// Both block for at most about `exchangeWait`. Background threads.

ProviderResult postAnalysisRequest(const ProviderAccess& access, std::string_view report,
                                   const std::stop_token& stop);

/// `recentChat` is oldest first.
ProviderResult postChatRequest(const ProviderAccess& access,
                               std::span<const AIChatMessage> recentChat, std::string_view question,
                               std::string_view report, const std::stop_token& stop);

}  // namespace tallowcrest
